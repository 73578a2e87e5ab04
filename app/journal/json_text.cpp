#include "app/journal/json_text.h"

#include <algorithm>
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

/// Whether one of eight bytes is zero.
constexpr bool HasZero(ascii::Block block) {
    return ((block - ascii::Repeated(1)) & ~block & ascii::HighBits) != 0;
}

/// The same for eight bytes.
constexpr bool IsPlain(ascii::Block block) {
    const ascii::Block controls = (block - ascii::Repeated(0x20)) & ~block;
    return ((block | controls) & ascii::HighBits) == 0 && !HasZero(block ^ ascii::Repeated('"')) &&
           !HasZero(block ^ ascii::Repeated('\\'));
}

bool IsPlain(std::string_view text) {
    if (text.size() < ascii::BlockSize)
        return std::ranges::all_of(text, [](char byte) { return IsPlain(byte); });
    std::size_t at = 0;
    for (; at + ascii::BlockSize <= text.size(); at += ascii::BlockSize)
        if (!IsPlain(ascii::BlockAt(text, at))) return false;
    // The last ones are looked at together with some that have been.
    return IsPlain(ascii::BlockAt(text, text.size() - ascii::BlockSize));
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

void JsonText::Put(double value) {
    if (!std::isfinite(value)) {
        Open();
        Member("number", std::string_view(std::isnan(value) ? "nan" : value > 0 ? "inf" : "-inf"));
        return Close();
    }
    char* const place = Room(MostDigits);
    const std::string_view digits(place, std::to_chars(place, place + MostDigits, value).ptr);
    size_ += digits.size();
    if (digits.find_first_of(".e") == std::string_view::npos) Append(".0");
}

void JsonText::Put(DateTime time) {
    // By the bits: there are two zeros.
    const auto isSame = [time](const KnownDate& known) {
        return !known.text.empty() && known.time == time &&
               std::signbit(known.time.days) == std::signbit(time.days);
    };
    if (const auto known = std::ranges::find_if(dates_, isSame); known != dates_.end()) {
        isFirst_ = false;
        return Append(known->text);
    }
    const std::size_t start = size_;
    Open();
    if (const std::string date = ReadableDate(time); !date.empty()) Member("date", date);
    Member("days", time.days);
    Close();
    dates_[nextDate_] = {time, std::string(Text().substr(start))};
    nextDate_ = (nextDate_ + 1) % dates_.size();
}

void JsonText::Put(std::string_view text) {
    if (IsPlain(text)) {
        char* const place = Room(text.size() + 2);
        place[0] = '"';
        text.copy(place + 1, text.size());
        place[text.size() + 1] = '"';
        size_ += text.size() + 2;
    } else if (IsWellFormed(text)) {
        PutEscaped(text);
    } else {
        Open();
        Name("bytes");
        Append('"');
        for (const char byte : text)
            PutByteHex(static_cast<unsigned char>(byte));
        Append('"');
        Close();
    }
}

/// Room for the longest escapes is made once, so that bytes go in without another look at it.
void JsonText::PutEscaped(std::string_view text) {
    constexpr std::size_t LongestEscape = 6;
    Append('"');
    Room(LongestEscape * text.size());
    for (std::size_t at = 0; at < text.size();) {
        if (at + ascii::BlockSize <= text.size() && IsPlain(ascii::BlockAt(text, at))) {
            std::memcpy(&memory_[size_], &text[at], ascii::BlockSize);
            size_ += ascii::BlockSize;
            at += ascii::BlockSize;
            continue;
        }
        const char byte = text[at++];
        const auto code = static_cast<unsigned char>(byte);
        if (code < 0x20) {
            Append("\\u00");
            PutByteHex(code);
        } else {
            if (byte == '"' || byte == '\\') memory_[size_++] = '\\';
            memory_[size_++] = byte;
        }
    }
    Append('"');
}

void JsonText::Learn(KnownName& known, std::string_view name) {
    const std::size_t start = size_;
    Put(name);
    Append(':');
    known = {std::string(name), std::string(Text().substr(start))};
    size_ = start;
}

void JsonText::PutHex(std::uint64_t number) {
    Append('"');
    char* const place = Room(MostDigits);
    size_ +=
        static_cast<std::size_t>(std::to_chars(place, place + MostDigits, number, 16).ptr - place);
    Append('"');
}

void JsonText::PutByteHex(unsigned char byte) {
    constexpr std::string_view Digits = "0123456789abcdef";
    Append(Digits[byte >> 4U]);
    Append(Digits[byte & 15U]);
}

}  // namespace quillon
