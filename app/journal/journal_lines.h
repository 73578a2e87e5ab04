#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "app/journal/json_text.h"
#include "changes/change.h"

namespace quillon {

/// A line of a journal that is no record: cut short by a kill, or edited. Says what is wrong.
class DamagedLine : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// A record as one line of JSON, without its line end. Every object has "record", which says what
/// it is: "run", "mode", "phase", "row", "date", "saved", "file", "failed", "log" or "end". Bytes
/// that are no text stand as {"bytes": hexadecimal digits}, dates as {"date": readable, "days":
/// exact}. A row that comes or goes has no "fields" where they would be those of its "key" once
/// more.
std::string ToLine(const ChangeRecord& record);

/// Makes many of them.
class JournalLines {
  public:
    /// Valid until the next call.
    std::string_view Of(const ChangeRecord& record);

  private:
    JsonText json_;
};

/// The record of such a line; names that it does not know are passed over. Throws DamagedLine.
ChangeRecord FromLine(std::string_view line);

}  // namespace quillon
