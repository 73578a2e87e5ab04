#include "platform/windows_name.h"

#include <algorithm>
#include <array>

#include "platform/ansi.h"

namespace quillon {
namespace {

constexpr std::size_t LongestName = 255;  // UTF-16 units

/// Whether a character, by its byte, can be in no name at all.
constexpr std::array<bool, 256> IsRefused = [] {
    std::array<bool, 256> refused{};
    std::fill_n(refused.begin(), ' ', true);
    for (const char character : std::string_view("<>:\"/\\|?*"))
        refused.at(static_cast<unsigned char>(character)) = true;
    return refused;
}();

}  // namespace

bool IsWindowsName(std::string_view name) {
    if (name.empty() || name.back() == '.' || name.back() == ' ') return false;
    for (const char character : name) {
        if (IsRefused[static_cast<unsigned char>(character)]) return false;
    }
    // No character has more units than bytes.
    return IsValidUtf8(name) && (name.size() <= LongestName || Utf16Length(name) <= LongestName);
}

}  // namespace quillon
