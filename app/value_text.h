#pragma once

#include <string>
#include <string_view>

#include "jet/value.h"

namespace quillon {

/// A database value for people: numbers with all their digits, dates as 2006-02-03T08:00:00 (with
/// milliseconds where there are any), binary values in base64, Null as "<null>".
std::string ValueText(const jet::Value& value);

/// The same as a JSON value. What JSON has no type for (dates, currency, decimals, GUIDs, binary
/// values) is a text.
std::string JsonValue(const jet::Value& value);

/// A text as a JSON string, quotes included. A lone surrogate becomes its \u escape.
std::string JsonString(std::string_view text);

}  // namespace quillon
