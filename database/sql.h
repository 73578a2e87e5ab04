#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// A text value between double quotes, as the tool's statements carry it. Nothing is escaped: a
/// value that holds a double quote would end its literal early and could turn into other SQL, so
/// it is a Failure here, as the statement would be one in the database.
std::string Quoted(std::string_view value);

/// Refuses a value that no such statement could hold, even where no statement is used any more:
/// rows that failed in it before are still to be reported.
void RefuseQuote(std::string_view value);

/// A text value between single quotes for record-set filters; apostrophes inside are doubled, so
/// that the value is matched as it is.
std::string FilterQuoted(std::string_view value);

}  // namespace quillon
