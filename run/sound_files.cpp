#include "run/sound_files.h"

#include <algorithm>
#include <array>

#include "platform/basic_text.h"

namespace quillon {
namespace {

std::string_view NameOf(std::string_view path) {
    return path.substr(path.rfind('\\') + 1);
}

}  // namespace

bool IsSoundFile(std::string_view name) {
    return EqualIgnoringCase(Right(name, 4), ".mp3") && !IsCompanion(name);
}

bool IsOtherAudio(std::string_view name) {
    constexpr std::array<std::string_view, 12> Endings{"aac", "aif", "aiff", "ape", "flac", "m4a",
                                                       "mpc", "ogg", "opus", "wav", "wma",  "wv"};
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || IsCompanion(name)) return false;
    const std::string_view ending = name.substr(dot + 1);
    return std::any_of(Endings.begin(), Endings.end(), [ending](std::string_view known) {
        return EqualIgnoringCase(ending, known);
    });
}

bool IsCompanion(std::string_view name) {
    constexpr std::string_view Beginning = "._";
    // Few names have that anywhere.
    return name.find(Beginning) != std::string_view::npos && NameOf(name).starts_with(Beginning);
}

}  // namespace quillon
