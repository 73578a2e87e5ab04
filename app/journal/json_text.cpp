#include "app/journal/json_text.h"

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

/// What stands in a JSON string as it is.
constexpr bool IsPlain(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    return code >= 0x20 && code < 0x80 && byte != '"' && byte != '\\';
}

/// Whether one of these bytes is zero; there may be a false alarm behind one that is.
constexpr ascii::Block HasZero(ascii::Block block) {
    return (block - ascii::Repeated(1)) & ~block & ascii::HighBits;
}

/// How many bytes stand before the first that is not plain.
std::size_t PlainLength(std::string_view text) {
    std::size_t at = 0;
    for (; at + ascii::BlockSize <= text.size(); at += ascii::BlockSize) {
        const ascii::Block block = ascii::BlockAt(text, at);
        const ascii::Block control = (block - ascii::Repeated(0x20)) & ~block;
        if (((block | control | HasZero(block ^ ascii::Repeated('"')) |
              HasZero(block ^ ascii::Repeated('\\'))) &
             ascii::HighBits) != 0)
            break;
    }
    while (at < text.size() && IsPlain(text[at]))
        ++at;
    return at;
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
    const char* const end =
        std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
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
