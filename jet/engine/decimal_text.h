#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "jet/value.h"

namespace jet::engine {

/// All digits of a Decimal: "-12.50" for scale 2.
std::string DecimalText(const Decimal& decimal);

double DecimalToReal(const Decimal& decimal);

/// The number with `scale` digits behind the point, halves rounded to even. Empty when it has more
/// than `precision` digits then (0: as many as fit), or is no plain decimal number.
std::optional<Decimal> ParseDecimal(std::string_view text, std::uint8_t precision,
                                    std::uint8_t scale);

/// A number without exponent, 15 significant digits: what ParseDecimal reads.
std::string FixedText(double number);

}  // namespace jet::engine
