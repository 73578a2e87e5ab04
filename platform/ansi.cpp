#include "platform/ansi.h"

#include <algorithm>
#include <array>

#include "platform/ascii.h"
#include "platform/utf8.h"

namespace quillon {
namespace {

// The code page equals the first 256 characters of Unicode but for these.
constexpr std::uint8_t FirstSpecial = 0x80;
constexpr std::array<char16_t, 32> Specials{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t CodeOf(std::uint8_t byte) {
    const bool special = byte >= FirstSpecial && byte < FirstSpecial + Specials.size();
    return special ? Specials[byte - FirstSpecial] : byte;
}

std::optional<char> ByteOf(char32_t code) {
    const auto byte = [](std::size_t value) {
        return static_cast<char>(static_cast<unsigned char>(value));
    };
    if (code < FirstSpecial || (code >= FirstSpecial + Specials.size() && code < 0x100)) {
        return byte(code);
    }
    const auto* const found = std::find(Specials.begin(), Specials.end(), code);
    if (found == Specials.end()) return std::nullopt;
    return byte(FirstSpecial + static_cast<std::size_t>(found - Specials.begin()));
}

}  // namespace

std::string AnsiToUtf8(std::span<const std::uint8_t> bytes) {
    return AnsiToUtf8(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

std::string AnsiToUtf8(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const std::size_t plain = ascii::PrefixLength(bytes);
        text += bytes.substr(0, plain);
        bytes.remove_prefix(plain);
        if (bytes.empty()) break;
        AppendUtf8(text, CodeOf(static_cast<std::uint8_t>(bytes.front())));
        bytes.remove_prefix(1);
    }
    return text;
}

std::string Utf8ToAnsi(std::string_view text) {
    std::string bytes(text.substr(0, ascii::PrefixLength(text)));
    bytes.reserve(text.size());
    for (std::size_t at = bytes.size(); at < text.size();) {
        const Utf8Character character = DecodeUtf8(text, at);
        bytes += character.wellFormed ? ByteOf(character.code).value_or('?') : '?';
        at += character.length;
    }
    return bytes;
}

std::optional<std::string> Utf8ToAnsiExactly(std::string_view text) {
    std::string bytes(text.substr(0, ascii::PrefixLength(text)));
    bytes.reserve(text.size());
    for (std::size_t at = bytes.size(); at < text.size();) {
        const Utf8Character character = DecodeUtf8(text, at);
        const std::optional<char> byte = ByteOf(character.code);
        if (!character.wellFormed || !byte) return std::nullopt;
        bytes += *byte;
        at += character.length;
    }
    return bytes;
}

bool IsAscii(std::string_view bytes) {
    return ascii::IsAscii(bytes);
}

bool IsValidUtf8(std::string_view bytes) {
    // What is beyond ASCII mostly is a letter here and there.
    for (std::size_t at = ascii::PrefixLength(bytes); at < bytes.size();
         at += ascii::PrefixLength(bytes.substr(at))) {
        const Utf8Character character = DecodeUtf8(bytes, at);
        if (!character.wellFormed) return false;
        at += character.length;
    }
    return true;
}

std::string ToValidUtf8(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (std::size_t at = 0; at < bytes.size();) {
        const Utf8Character character = DecodeUtf8(bytes, at);
        const std::string_view own = bytes.substr(at, character.length);
        text += character.wellFormed ? std::string(own) : AnsiToUtf8(own);
        at += character.length;
    }
    return text;
}

std::size_t Utf16Length(std::string_view text) {
    std::size_t units = ascii::PrefixLength(text);
    for (std::size_t at = units; at < text.size();) {
        const Utf8Character character = DecodeUtf8(text, at);
        units += character.code > 0xFFFF ? 2 : 1;
        at += character.length;
    }
    return units;
}

}  // namespace quillon
