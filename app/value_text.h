#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "jet/schema.h"
#include "jet/value.h"

namespace quillon {

/// A database value for people: numbers with all their digits, dates as 2006-02-03T08:00:00 (with
/// milliseconds where there are any), binary values in base64, Null as "<null>".
std::string ValueText(const jet::Value& value);

/// The same as a JSON value. What JSON has no type for (dates, currency, decimals, GUIDs, binary
/// values) is a text.
std::string JsonValue(const jet::Value& value);

/// The value for a cell of a table: of a long binary value its beginning and its size.
std::string CellText(const jet::Value& value);

/// The value that a text means in a field: what ValueText has written, and what the database reads
/// itself. CommandError for binary values that are no base64.
jet::Value ValueFor(const jet::ColumnDefinition& column, std::string_view text);

/// Whether all of it is UTF-8.
bool IsUtf8(std::string_view text);

/// A date as ValueText writes it, time and milliseconds being optional.
std::optional<jet::Date> ParseIsoDate(std::string_view text);

/// A text as a JSON string, quotes included. A lone surrogate becomes its \u escape; bytes that are
/// no UTF-8 become U+FFFD.
std::string JsonString(std::string_view text);

}  // namespace quillon
