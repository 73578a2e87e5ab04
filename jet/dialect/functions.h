#pragma once

#include <cstddef>
#include <string_view>

#include "jet/schema.h"
#include "jet/value.h"

namespace jet::dialect {

/// What kind of value an expression yields, as far as the statement tells.
enum class ValueKind {
    Any,  ///< known only when it is there
    Boolean,
    Number,
    Currency,
    Decimal,
    Date,
    Guid,
    Binary,
    Text,
};

/// The kind of a column's values.
ValueKind KindOf(ColumnType type);
/// The kind of a value; Any for Null.
ValueKind KindOf(const Value& value);

/// A function of Access SQL and what stands for it in the executed SQL.
struct FunctionRule {
    std::string_view name;
    std::size_t arguments;
    /// The executed SQL; $1 to $9 stand for the arguments.
    std::string_view pattern;
    /// The result's kind; `Any` with `kindOfArgument` > 0: the kind of that argument.
    ValueKind kind;
    std::size_t kindOfArgument = 0;
    bool aggregate = false;
    bool condition = false;  ///< the executed SQL yields 1 or 0
};

/// The rule for a function called with this many arguments. Null if there is none.
const FunctionRule* FindFunction(std::string_view name, std::size_t arguments);

/// Whether a function of this name exists, with whatever arguments.
bool IsFunction(std::string_view name);

}  // namespace jet::dialect
