#include "jet/guid_text.h"

#include <cstddef>

namespace jet {

namespace {

constexpr std::string_view Digits = "0123456789ABCDEF";

bool HasDashBefore(std::size_t byte) {
    return byte == 4 || byte == 6 || byte == 8 || byte == 10;
}

std::optional<std::uint8_t> DigitValue(char c) {
    const char upper = c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c;
    const std::size_t found = Digits.find(upper);
    if (found == std::string_view::npos) return std::nullopt;
    return static_cast<std::uint8_t>(found);
}

}  // namespace

std::string GuidText(const Guid& guid) {
    std::string text = "{";
    for (std::size_t i = 0; i < guid.bytes.size(); ++i) {
        if (HasDashBefore(i)) text += '-';
        text += Digits[guid.bytes[i] >> 4];
        text += Digits[guid.bytes[i] & 0xF];
    }
    return text + '}';
}

std::optional<Guid> ParseGuid(std::string_view text) {
    if (text.size() == 38 && text.front() == '{' && text.back() == '}') text = text.substr(1, 36);
    if (text.size() != 36) return std::nullopt;
    Guid guid;
    std::size_t at = 0;
    for (std::size_t i = 0; i < guid.bytes.size(); ++i) {
        if (HasDashBefore(i) && text[at++] != '-') return std::nullopt;
        const auto high = DigitValue(text[at++]), low = DigitValue(text[at++]);
        if (!high || !low) return std::nullopt;
        guid.bytes[i] = static_cast<std::uint8_t>(*high << 4 | *low);
    }
    return guid;
}

}  // namespace jet
