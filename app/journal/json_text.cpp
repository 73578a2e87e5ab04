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

/// The bit of a byte that is zero is set; so may be those of bytes above the lowest such one.
constexpr ascii::Block Zeros(ascii::Block block) {
    return (block - ascii::Repeated(1)) & ~block & ascii::HighBits;
}

/// How many of eight bytes stand before the first that has to be escaped.
constexpr std::size_t PlainBytes(ascii::Block block) {
    const ascii::Block controls = (block - ascii::Repeated(0x20)) & ~block & ascii::HighBits;
    const ascii::Block escaped =
        controls | Zeros(block ^ ascii::Repeated('"')) | Zeros(block ^ ascii::Repeated('\\'));
    return static_cast<std::size_t>(std::countr_zero(escaped)) / 8;
}

constexpr std::string_view Digits = "0123456789abcdef";
constexpr std::size_t LongestEscape = 6;

/// Writes a byte that cannot stand for itself; gives the place behind it.
char* Escape(char byte, char* to) {
    *to++ = '\\';
    if (byte == '"' || byte == '\\') {
        *to++ = byte;
        return to;
    }
    const auto code = static_cast<unsigned char>(byte);
    for (const char next : {'u', '0', '0', Digits[code >> 4U], Digits[code & 15U]})
        *to++ = next;
    return to;
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

/// Room for the longest escapes is made once, so that bytes go in without another look at it. Eight
/// bytes are put at a time, of which those count that stand before the next one to be escaped.
void JsonText::Put(std::string_view text) {
    char* to = Room(LongestEscape * text.size() + 2 + ascii::BlockSize);
    *to++ = '"';
    ascii::Block seen = 0;
    for (std::string_view left = text; !left.empty();) {
        std::string_view behind = left;
        const ascii::Block block = ascii::TakeBlock(behind);
        const std::size_t plain = std::min(PlainBytes(block), left.size());
        std::memcpy(to, &block, ascii::BlockSize);
        to += plain;
        seen |= block;
        left.remove_prefix(plain);
        if (plain == ascii::BlockSize || left.empty()) continue;
        to = Escape(left.front(), to);
        left.remove_prefix(1);
    }
    *to++ = '"';
    if ((seen & ascii::HighBits) != 0 && !IsWellFormed(text)) return PutBytes(text);
    size_ = static_cast<std::size_t>(to - memory_.data());
}

void JsonText::PutBytes(std::string_view bytes) {
    Open();
    Name("bytes");
    Append('"');
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        Append(Digits[code >> 4U]);
        Append(Digits[code & 15U]);
    }
    Append('"');
    Close();
}

void JsonText::Learn(KnownName& known, std::string_view name) {
    const std::size_t start = size_;
    Put(name);
    Append(':');
    const std::string_view written = Text().substr(start);
    known = {.name = std::string(name), .written = std::string(written)};
    written.copy(known.beginning.data(), known.beginning.size());
    size_ = start;
}

void JsonText::PutHex(std::uint64_t number) {
    Append('"');
    char* const place = Room(MostDigits);
    size_ +=
        static_cast<std::size_t>(std::to_chars(place, place + MostDigits, number, 16).ptr - place);
    Append('"');
}

}  // namespace quillon
