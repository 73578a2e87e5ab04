#pragma once

#include <cstdint>

#include "jet/dialect/token.h"
#include "jet/schema.h"

namespace jet::engine {

/// Which number a field must hold to equal a literal.
struct WantedNumber {
    enum class Kind {
        Unknown,  ///< it cannot be said from the literal
        None,     ///< no number that the field can hold
        One,
    };
    Kind kind = Kind::Unknown;
    std::int64_t number = 0;
};

/// What a comparison of a column of this type with the literal comes to; `negated` where a minus
/// sign stands before it. Known of whole numbers alone: their keys in an index and the comparison
/// agree on what is equal. Texts that the comparison takes for equal, as those that differ in
/// letter case only, may have different keys, and a floating zero has two.
WantedNumber NumberEqualTo(ColumnType type, const dialect::Literal& literal, bool negated);

}  // namespace jet::engine
