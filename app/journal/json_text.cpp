#include "app/journal/json_text.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "platform/ascii.h"
#include "platform/failure.h"
#include "platform/utf8.h"

namespace quillon {
namespace {

bool IsWellFormed(std::string_view text) {
    for (std::size_t at = ascii::PrefixLength(text); at < text.size();) {
        const Utf8Character character = DecodeUtf8(text, at);
        if (!character.wellFormed) return false;
        at += character.length;
    }
    return true;
}

/// Set in the first byte that is below a limit, and perhaps in bytes behind it.
constexpr ascii::Block Below(ascii::Block block, unsigned char limit) {
    return (block - ascii::Repeated(limit)) & ~block & ascii::HighBits;
}

/// How many bytes stand before the first that does not stand in a JSON string as it is, or is no
/// ASCII.
std::size_t PlainLength(std::string_view text) {
    constexpr unsigned char FirstPlain = 0x20;
    for (std::size_t at = 0; at < text.size(); at += ascii::BlockSize) {
        std::string_view rest = text.substr(at);
        const ascii::Block block = ascii::TakeBlock(rest);
        const ascii::Block odd = (block & ascii::HighBits) | Below(block, FirstPlain) |
                                 Below(block ^ ascii::Repeated('"'), 1) |
                                 Below(block ^ ascii::Repeated('\\'), 1);
        // Behind the text's end stand zeros.
        if (odd != 0)
            return std::min(text.size(), at + static_cast<std::size_t>(std::countr_zero(odd)) / 8);
    }
    return text.size();
}

/// "" outside the years that have a text.
std::string ReadableDate(DateTime time) {
    try {
        return SortableDateTimeText(time);
    } catch (const Failure&) {
        return "";
    }
}

}  // namespace

void JsonText::Name(std::string_view name) {
    constexpr std::size_t Longest = 40;
    if (name.size() > Longest || PlainLength(name) != name.size()) {
        if (!isFirst_) text_ += ',';
        Put(name);
        text_ += ':';
    } else {
        // In one piece, as there are so many of them.
        std::array<char, Longest + 4> piece{};
        char* end = piece.data();
        if (!isFirst_) *end++ = ',';
        *end++ = '"';
        end += name.copy(end, name.size());
        *end++ = '"';
        *end++ = ':';
        text_.append(piece.data(), static_cast<std::size_t>(end - piece.data()));
    }
    isFirst_ = false;
}

void JsonText::Put(double value) {
    if (!std::isfinite(value)) {
        Open();
        Member("number", std::string_view(std::isnan(value) ? "nan" : value > 0 ? "inf" : "-inf"));
        return Close();
    }
    std::array<char, 32> digits{};
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    PutDigits(digits, end);
    if (std::string_view(digits.data(), end).find_first_of(".e") == std::string_view::npos)
        text_ += ".0";
}

void JsonText::Put(DateTime time) {
    Open();
    if (const std::string date = ReadableDate(time); !date.empty()) Member("date", date);
    Member("days", time.days);
    Close();
}

void JsonText::Put(std::string_view text) {
    if (PlainLength(text) == text.size()) {
        text_.append(1, '"').append(text) += '"';
    } else if (IsWellFormed(text)) {
        PutEscaped(text);
    } else {
        Open();
        Name("bytes");
        text_ += '"';
        for (const char byte : text)
            PutByteHex(static_cast<unsigned char>(byte));
        text_ += '"';
        Close();
    }
}

void JsonText::PutEscaped(std::string_view text) {
    text_ += '"';
    while (!text.empty()) {
        const std::size_t plain = PlainLength(text);
        text_.append(text.substr(0, plain));
        text.remove_prefix(plain);
        if (text.empty()) break;
        const char byte = text.front();
        if (byte == '"' || byte == '\\') {
            text_.append(1, '\\') += byte;
        } else if (static_cast<unsigned char>(byte) < 0x20) {
            text_ += "\\u00";
            PutByteHex(static_cast<unsigned char>(byte));
        } else {
            text_ += byte;
        }
        text.remove_prefix(1);
    }
    text_ += '"';
}

void JsonText::PutHex(std::uint64_t number) {
    std::array<char, 32> digits{};
    const char* const end =
        std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
    text_ += '"';
    PutDigits(digits, end);
    text_ += '"';
}

void JsonText::PutByteHex(unsigned char byte) {
    constexpr std::string_view Digits = "0123456789abcdef";
    text_ += Digits[byte >> 4];
    text_ += Digits[byte & 15];
}

}  // namespace quillon
