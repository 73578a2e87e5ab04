#include "jet/storage/format/utf16.h"

#include <array>
#include <utility>

#include "jet/storage/format/values.h"

namespace jet::storage {

namespace {

constexpr char32_t Replacement = 0xFFFD;

constexpr bool IsHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
constexpr bool IsLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

/// Length of the sequence that a lead byte announces; 1 for a byte that cannot lead one.
constexpr std::size_t SequenceLength(unsigned char lead) {
    if (lead >= 0xC2 && lead < 0xE0) return 2;
    if (lead >= 0xE0 && lead < 0xF0) return 3;
    if (lead >= 0xF0 && lead < 0xF5) return 4;
    return 1;
}

/// The least code point that needs a sequence of this length.
constexpr std::array<char32_t, 5> LeastOfLength{0, 0, 0x80, 0x800, 0x10000};

}  // namespace

char32_t Utf16Reader::DecodeSequence() {
    const auto lead = static_cast<unsigned char>(text_[position_]);
    const std::size_t length = SequenceLength(lead);
    if (length == 1 || text_.size() - position_ < length) {
        ++position_;
        return Replacement;
    }
    auto codePoint = static_cast<char32_t>(lead & (0xFFU >> (length + 1)));
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text_[position_ + i]);
        if ((byte & 0xC0) != 0x80) {
            ++position_;
            return Replacement;
        }
        codePoint = (codePoint << 6) | (byte & 0x3FU);
    }
    if (codePoint < LeastOfLength[length] || codePoint > 0x10FFFF) {
        ++position_;
        return Replacement;
    }
    position_ += length;
    return codePoint;
}

char16_t Utf16Reader::NextWide() {
    if (lowSurrogate_ != 0) return std::exchange(lowSurrogate_, u'\0');
    const char32_t codePoint = DecodeSequence();
    if (codePoint < 0x10000) return static_cast<char16_t>(codePoint);
    lowSurrogate_ = static_cast<char16_t>(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
    return static_cast<char16_t>(0xD800 + ((codePoint - 0x10000) >> 10));
}

void Utf8Writer::AppendCodePoint(char32_t codePoint) {
    const auto append = [this](char32_t byte) { text_.push_back(static_cast<char>(byte)); };
    if (codePoint < 0x80) {
        append(codePoint);
    } else if (codePoint < 0x800) {
        append(0xC0 | (codePoint >> 6));
        append(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        append(0xE0 | (codePoint >> 12));
        append(0x80 | ((codePoint >> 6) & 0x3F));
        append(0x80 | (codePoint & 0x3F));
    } else {
        append(0xF0 | (codePoint >> 18));
        append(0x80 | ((codePoint >> 12) & 0x3F));
        append(0x80 | ((codePoint >> 6) & 0x3F));
        append(0x80 | (codePoint & 0x3F));
    }
}

void Utf8Writer::AppendWide(char16_t unit) {
    if (const char16_t high = std::exchange(highSurrogate_, u'\0'); high != 0) {
        if (IsLowSurrogate(unit)) {
            AppendCodePoint(0x10000 + ((high - char32_t{0xD800}) << 10) +
                            (unit - char32_t{0xDC00}));
            return;
        }
        AppendCodePoint(high);
    }
    if (IsHighSurrogate(unit)) {
        highSurrogate_ = unit;
    } else {
        AppendCodePoint(unit);
    }
}

std::string Utf8Writer::Take() {
    if (highSurrogate_ != 0) AppendCodePoint(std::exchange(highSurrogate_, u'\0'));
    return std::move(text_);
}

std::u16string ToUtf16(std::string_view utf8) {
    std::u16string units;
    units.reserve(utf8.size());
    for (Utf16Reader reader(utf8); !reader.AtEnd();)
        units.push_back(reader.Next());
    return units;
}

std::string ToUtf8(std::u16string_view utf16) {
    Utf8Writer writer;
    writer.Reserve(utf16.size());
    for (const char16_t unit : utf16)
        writer.Append(unit);
    return writer.Take();
}

}  // namespace jet::storage
