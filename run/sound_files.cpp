#include "run/sound_files.h"

#include "platform/basic_text.h"

namespace quillon {

bool IsSoundFile(std::string_view name) {
    return EqualIgnoringCase(Right(name, 4), ".mp3");
}

}  // namespace quillon
