#include "id3/same_sound.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "tags/sound_bytes.h"

namespace quillon {
namespace {

constexpr std::size_t PieceSize = std::size_t{64} * 1024;

}  // namespace

bool HaveSameSound(Files& files, std::string_view path, std::string_view other) {
    SoundBytes first(files, path), second(files, other);
    if (first.Size() != second.Size()) return false;
    for (std::uint64_t offset = 0; offset < first.Size(); offset += PieceSize) {
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(PieceSize, first.Size() - offset));
        if (first.Read(offset, count) != second.Read(offset, count)) return false;
    }
    return true;
}

}  // namespace quillon
