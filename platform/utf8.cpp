#include "platform/utf8.h"

namespace quillon {
namespace {

constexpr char32_t FirstSurrogate = 0xD800;
constexpr char32_t LastSurrogate = 0xDFFF;
constexpr char32_t LastCode = 0x10FFFF;
constexpr char32_t Replacement = 0xFFFD;

char32_t ByteAt(std::string_view text, std::size_t position) {
    return static_cast<unsigned char>(text[position]);
}

bool IsSurrogate(char32_t code) {
    return code >= FirstSurrogate && code <= LastSurrogate;
}

/// Bytes that a character with this first byte takes; 0 when none starts so.
std::size_t LengthFor(char32_t first) {
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first < 0xE0) return 2;
    if (first >= 0xE0 && first < 0xF0) return 3;
    if (first >= 0xF0 && first < 0xF5) return 4;
    return 0;
}

char ToByte(char32_t value) {
    return static_cast<char>(static_cast<unsigned char>(value));
}

}  // namespace

Utf8Character DecodeUtf8(std::string_view text, std::size_t position) {
    const char32_t first = ByteAt(text, position);
    if (first < 0x80) return {first, 1, true};
    const Utf8Character stray{first, 1, false};
    const std::size_t length = LengthFor(first);
    if (length == 0 || length > text.size() - position) return stray;
    char32_t code = first & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        const char32_t next = ByteAt(text, position + i);
        if ((next & 0xC0U) != 0x80) return stray;
        code = (code << 6U) | (next & 0x3FU);
    }
    const bool tooLong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    if (tooLong || code > LastCode) return stray;
    return {code, length, !IsSurrogate(code)};
}

void AppendUtf8(std::string& text, char32_t code) {
    if (code > LastCode || IsSurrogate(code)) code = Replacement;
    if (code < 0x80) {
        text += ToByte(code);
        return;
    }
    if (code < 0x800) {
        text += ToByte(0xC0U | (code >> 6U));
    } else if (code < 0x10000) {
        text += ToByte(0xE0U | (code >> 12U));
        text += ToByte(0x80U | ((code >> 6U) & 0x3FU));
    } else {
        text += ToByte(0xF0U | (code >> 18U));
        text += ToByte(0x80U | ((code >> 12U) & 0x3FU));
        text += ToByte(0x80U | ((code >> 6U) & 0x3FU));
    }
    text += ToByte(0x80U | (code & 0x3FU));
}

}  // namespace quillon
