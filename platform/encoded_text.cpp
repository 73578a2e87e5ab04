#include "platform/encoded_text.h"

#include "platform/ansi.h"
#include "platform/utf8.h"

namespace quillon {
namespace {

constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view Utf16Mark = "\xFF\xFE";
constexpr std::string_view Utf16BigEndianMark = "\xFE\xFF";

/// How the two bytes of a unit stand in a file.
enum class ByteOrder { LowFirst, HighFirst };

char32_t UnitAt(std::string_view bytes, std::size_t position, ByteOrder order) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
    const std::size_t low = order == ByteOrder::LowFirst ? position : position + 1;
    const std::size_t high = order == ByteOrder::LowFirst ? position + 1 : position;
    return static_cast<char32_t>(byte(low) | byte(high) << 8U);
}

/// Half a surrogate pair becomes U+FFFD, half a unit is dropped.
std::string FromUtf16(std::string_view bytes, ByteOrder order) {
    std::string text;
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        char32_t code = UnitAt(bytes, at, order);
        const bool first = code >= 0xD800 && code < 0xDC00;
        const char32_t next = first && at + 3 < bytes.size() ? UnitAt(bytes, at + 2, order) : 0;
        if (next >= 0xDC00 && next < 0xE000) {
            code = 0x10000 + ((code - 0xD800) << 10U) + (next - 0xDC00);
            at += 2;
        }
        AppendUtf8(text, code);
    }
    return text;
}

}  // namespace

std::string DecodeText(std::string_view bytes) {
    if (bytes.starts_with(Utf16Mark))
        return FromUtf16(bytes.substr(Utf16Mark.size()), ByteOrder::LowFirst);
    if (bytes.starts_with(Utf16BigEndianMark))
        return FromUtf16(bytes.substr(Utf16BigEndianMark.size()), ByteOrder::HighFirst);
    if (bytes.starts_with(Utf8Mark)) return ToValidUtf8(bytes.substr(Utf8Mark.size()));
    return IsValidUtf8(bytes) ? std::string(bytes) : AnsiToUtf8(bytes);
}

}  // namespace quillon
