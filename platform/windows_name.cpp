#include "platform/windows_name.h"

#include "platform/ansi.h"

namespace quillon {
namespace {

constexpr std::size_t LongestName = 255;  // UTF-16 units

/// Whether a character can be in no name at all.
bool IsRefused(char character) {
    switch (character) {
        case '<':
        case '>':
        case ':':
        case '"':
        case '/':
        case '\\':
        case '|':
        case '?':
        case '*':
            return true;
        default:
            return static_cast<unsigned char>(character) < 0x20;
    }
}

}  // namespace

bool IsWindowsName(std::string_view name) {
    if (name.empty() || name.back() == '.' || name.back() == ' ') return false;
    bool isAscii = true;
    for (const char character : name) {
        if (IsRefused(character)) return false;
        isAscii = isAscii && static_cast<unsigned char>(character) < 0x80;
    }
    if (isAscii) return name.size() <= LongestName;
    return IsValidUtf8(name) && Utf16Length(name) <= LongestName;
}

}  // namespace quillon
