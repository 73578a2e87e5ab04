#include <algorithm>
#include <cstring>
#include <utility>

#include "jet/storage/format/page.h"
#include "jet/storage/format/utf16.h"
#include "jet/storage/format/values.h"

namespace jet::storage {

bool IsCompressedText(std::span<const std::uint8_t> bytes) {
    return bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE;
}

bool IsPlainAscii(std::string_view text) {
    constexpr std::uint64_t Ones = 0x0101010101010101, HighBits = 0x8080808080808080;
    std::uint64_t others = 0, word = 0;
    std::size_t i = 0;
    for (; text.size() - i >= sizeof(word); i += sizeof(word)) {
        std::memcpy(&word, text.data() + i, sizeof(word));
        others |= (word - Ones) | word;
    }
    for (; i < text.size(); ++i)
        others |= text[i] <= 0 ? HighBits : 0;
    return (others & HighBits) == 0;
}

bool IsUsualText(std::string_view text) {
    const auto byteAt = [text](std::size_t i) {
        return i < text.size() ? static_cast<std::uint8_t>(text[i]) : std::uint8_t{0};
    };
    const auto goesOn = [&](std::size_t i) { return (byteAt(i) & 0xC0) == 0x80; };
    for (std::size_t i = 0; i < text.size();) {
        const std::uint8_t first = byteAt(i), second = byteAt(i + 1);
        if (first > 0 && first < 0x80) {
            ++i;
        } else if (first >= 0xC2 && first < 0xE0 && goesOn(i + 1)) {
            i += 2;
        } else if ((first & 0xF0) == 0xE0 && goesOn(i + 1) && goesOn(i + 2) &&
                   !(first == 0xE0 && second < 0xA0) && !(first == 0xED && second >= 0xA0)) {
            i += 3;
        } else {
            return false;
        }
    }
    return true;
}

namespace {

constexpr char16_t ByteOrderMark = 0xFEFF;
constexpr std::size_t ShortestCompressed = 3;

constexpr std::size_t LongestCompressed(bool isMemo) {
    return isMemo ? 1024 : static_cast<std::size_t>(-1);
}

/// A unit that one byte stands for in the compressed form.
bool IsOneByte(char16_t unit) {
    return unit >= 1 && unit <= 0xFF;
}

/// A unit that a compressed value can hold between two mode switches: its bytes look like none.
bool IsTwoBytes(char16_t unit) {
    return (unit & 0xFF) != 0 && unit > 0xFF;
}

void AppendPlain(Bytes& bytes, char16_t unit) {
    bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
}

/// Most texts can be written byte by byte. False, and nothing appended, where one cannot.
bool AppendOneByteUnits(Bytes& bytes, std::string_view utf8, std::size_t longest) {
    const std::size_t start = bytes.size();
    bytes.resize(start + 2 + utf8.size());
    bytes[start] = 0xFF;
    bytes[start + 1] = 0xFE;
    const std::size_t begin = start + 2;
    if (utf8.size() >= ShortestCompressed && utf8.size() <= longest && IsPlainAscii(utf8)) {
        std::ranges::copy(utf8, bytes.begin() + static_cast<std::ptrdiff_t>(begin));
        return true;
    }
    std::size_t end = begin;
    bool fits = true;
    for (std::size_t i = 0; fits && i < utf8.size(); ++i) {
        const auto byte = static_cast<std::uint8_t>(utf8[i]);
        const auto next = i + 1 < utf8.size() ? static_cast<std::uint8_t>(utf8[i + 1]) : 0;
        if (byte > 0 && byte < 0x80) {
            bytes[end++] = byte;
        } else if ((byte == 0xC2 || byte == 0xC3) && (next & 0xC0) == 0x80) {
            bytes[end++] = static_cast<std::uint8_t>(byte << 6 | (next & 0x3F));
            ++i;
        } else {
            fits = false;
        }
    }
    fits = fits && end - begin >= ShortestCompressed && end - begin <= longest;
    bytes.resize(fits ? end : start);
    return fits;
}

Bytes EncodePlain(std::u16string_view text) {
    Bytes bytes;
    bytes.reserve(text.size() * 2);
    for (const char16_t unit : text)
        AppendPlain(bytes, unit);
    return bytes;
}

Bytes EncodeCompressed(std::u16string_view text) {
    Bytes bytes{0xFF, 0xFE};
    bytes.reserve(text.size() + 2);
    bool plain = false;
    for (const char16_t unit : text) {
        if (IsOneByte(unit) == plain) {
            bytes.push_back(0);
            plain = !plain;
        }
        if (plain) {
            AppendPlain(bytes, unit);
        } else {
            bytes.push_back(static_cast<std::uint8_t>(unit));
        }
    }
    return bytes;
}

std::string_view TextOf(std::span<const std::uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Puts the UTF-8 of units of one byte each into `text`.
void WidenOneByteUnits(std::string_view units, std::string& text) {
    text.resize(2 * units.size());
    std::size_t size = 0;
    for (const char unit : units) {
        const auto byte = static_cast<unsigned char>(unit);
        if (byte < 0x80) {
            text[size++] = unit;
        } else {
            text[size++] = static_cast<char>(0xC0 | byte >> 6);
            text[size++] = static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    text.resize(size);
}

/// Hands out the units of either form until one is refused.
template <typename Visit>
void ForEachUnit(std::span<const std::uint8_t> bytes, Visit visit) {
    bool plain = true;
    std::size_t i = 0;
    const bool compressed = IsCompressedText(bytes);
    if (compressed) {
        plain = false;
        i = 2;
    }
    while (i < bytes.size()) {
        if (compressed && bytes[i] == 0) {
            plain = !plain;
            ++i;
        } else if (!plain) {
            if (!visit(char16_t{bytes[i++]})) return;
        } else if (bytes.size() - i >= 2) {
            if (!visit(Load<char16_t>(bytes, i))) return;
            i += 2;
        } else {
            return;  // half a unit is no text
        }
    }
}

}  // namespace

Bytes EncodeText(std::u16string_view text, bool mayCompress, bool isMemo) {
    if (mayCompress && text.size() >= ShortestCompressed &&
        text.size() <= LongestCompressed(isMemo) && std::ranges::all_of(text, IsOneByte))
        return EncodeCompressed(text);
    // A plain value that begins with the byte order mark would be read as a compressed one.
    if (text.starts_with(ByteOrderMark)) {
        const auto fits = [](char16_t unit) { return IsOneByte(unit) || IsTwoBytes(unit); };
        if (std::ranges::all_of(text, fits)) return EncodeCompressed(text);
        text.remove_prefix(std::min(text.find_first_not_of(ByteOrderMark), text.size()));
    }
    return EncodePlain(text);
}

void AppendText(Bytes& bytes, std::string_view utf8, bool mayCompress, bool isMemo) {
    const std::size_t longest = LongestCompressed(isMemo);
    if (mayCompress && utf8.size() >= ShortestCompressed && utf8.size() <= longest &&
        IsPlainAscii(utf8)) {
        bytes.insert(bytes.end(), {0xFF, 0xFE});
        bytes.insert(bytes.end(), utf8.begin(), utf8.end());
        return;
    }
    if (mayCompress && AppendOneByteUnits(bytes, utf8, longest)) return;
    const Bytes encoded = EncodeText(ToUtf16(utf8), mayCompress, isMemo);
    bytes.insert(bytes.end(), encoded.begin(), encoded.end());
}

std::string DecodeText(std::span<const std::uint8_t> bytes) {
    std::string text;
    DecodeText(bytes, text);
    return text;
}

void DecodeText(std::span<const std::uint8_t> bytes, std::string& text) {
    if (IsCompressedText(bytes)) {
        const auto units = TextOf(bytes.subspan(2));
        if (IsPlainAscii(units)) {
            text.assign(units);
            return;
        }
        if (units.find('\0') == std::string_view::npos) return WidenOneByteUnits(units, text);
    }
    Utf8Writer writer(std::move(text));
    writer.Reserve(bytes.size());
    ForEachUnit(bytes, [&writer](char16_t unit) {
        writer.Append(unit);
        return true;
    });
    text = writer.Take();
}

std::size_t DecodeUnits(std::span<const std::uint8_t> bytes, std::span<char16_t> units) {
    // The usual form: compressed, one byte for each unit.
    if (IsCompressedText(bytes) && bytes.size() - 2 <= units.size() &&
        std::memchr(bytes.data(), 0, bytes.size()) == nullptr) {
        std::copy(bytes.begin() + 2, bytes.end(), units.begin());
        return bytes.size() - 2;
    }
    std::size_t count = 0;
    ForEachUnit(bytes, [&](char16_t unit) {
        if (count == units.size()) return false;
        units[count++] = unit;
        return true;
    });
    return count;
}

std::size_t CountUnits(std::span<const std::uint8_t> bytes) {
    std::size_t count = 0;
    ForEachUnit(bytes, [&count](char16_t) {
        ++count;
        return true;
    });
    return count;
}

}  // namespace jet::storage
