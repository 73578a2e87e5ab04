#include "library/rows.h"

#include <cmath>
#include <variant>

namespace quillon {

RowNumber NumberOf(const Value& value) {
    if (const auto* const number = std::get_if<std::int64_t>(&value))
        return static_cast<std::int32_t>(*number);
    if (const auto* const number = std::get_if<double>(&value))
        return static_cast<std::int32_t>(std::lround(*number));
    return std::nullopt;
}

bool IsTrue(const Value& value) {
    if (const bool* const answer = std::get_if<bool>(&value)) return *answer;
    return NumberOf(value).value_or(0) != 0;
}

}  // namespace quillon
