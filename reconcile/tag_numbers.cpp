#include "reconcile/tag_numbers.h"

#include <limits>

#include "platform/basic_text.h"

namespace quillon {

std::optional<std::int64_t> StoredNumberIn(std::string_view text) {
    if (!IsNumeric(text)) return std::nullopt;
    return ToInteger(text);
}

std::optional<std::int64_t> AskedNumberIn(std::string_view text) {
    constexpr double Most = std::numeric_limits<std::int16_t>::max();
    const std::optional<double> number = ToNumber(text);
    if (!number || *number < 0 || *number > Most) return std::nullopt;
    return ToInteger(text);
}

std::int64_t DiscNumberIn(std::string_view text) {
    constexpr double Most = 99;
    const std::optional<double> number = ToNumber(text);
    return number && *number >= 1 && *number <= Most ? static_cast<std::int64_t>(*number) : 1;
}

}  // namespace quillon
