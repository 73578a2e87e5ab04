#pragma once

#include <string_view>

#include "jet/value.h"
#include "platform/database.h"

namespace quillon {

/// The database engine's values as those of the platform interface: Currency and Decimal become
/// double, a Guid becomes its text in braces. Failure: TypeMismatch for binary content, which the
/// interface does not carry.
Value FromJet(const jet::Value& value, std::string_view field);
/// The same, with the room that a text there has.
void FromJet(const jet::Value& value, std::string_view field, Value& into);
/// The same for one of many values: what it leaves in the engine's one is good for the next text,
/// so that not each takes memory anew.
void ExchangeFromJet(jet::Value& value, std::string_view field, Value& into);

/// And back; nothing is lost.
jet::Value ToJet(const Value& value);
/// The same, with the room that a text there has.
void ToJet(const Value& value, jet::Value& converted);

}  // namespace quillon
