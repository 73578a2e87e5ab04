#include "compat/flat.h"

namespace quillon {

std::int16_t Flat::Size() const {
    return FileCount(files_.size());
}

void Flat::TrackNumber([[maybe_unused]] std::int16_t ignored) {
    trackNumber_ = TrackNumber();
}

}  // namespace quillon
