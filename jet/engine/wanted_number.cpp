#include "jet/engine/wanted_number.h"

#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace jet::engine {

namespace {

template <typename Number>
constexpr std::pair<std::int64_t, std::int64_t> RangeOf() {
    return {std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max()};
}

std::optional<std::pair<std::int64_t, std::int64_t>> RangeOf(ColumnType type) {
    switch (type) {
        case ColumnType::Byte:
            return RangeOf<std::uint8_t>();
        case ColumnType::Integer:
            return RangeOf<std::int16_t>();
        case ColumnType::Long:
            return RangeOf<std::int32_t>();
        default:
            return std::nullopt;
    }
}

std::optional<double> RealOf(const dialect::Literal& literal) {
    if (const auto* whole = std::get_if<std::int64_t>(&literal)) return static_cast<double>(*whole);
    if (const auto* real = std::get_if<double>(&literal)) return *real;
    if (const auto* date = std::get_if<Date>(&literal)) return date->days;
    return std::nullopt;
}

}  // namespace

WantedNumber NumberEqualTo(ColumnType type, const dialect::Literal& literal, bool negated) {
    const auto range = RangeOf(type);
    const std::optional<double> written = RealOf(literal);
    if (!range || !written) return {};
    // Every number of the range is a floating-point number, too.
    const double number = negated ? -*written : *written;
    const bool fits = number >= static_cast<double>(range->first) &&
                      number <= static_cast<double>(range->second) && number == std::trunc(number);
    if (!fits) return {.kind = WantedNumber::Kind::None, .number = 0};
    return {.kind = WantedNumber::Kind::One, .number = static_cast<std::int64_t>(number)};
}

}  // namespace jet::engine
