#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "changes/change.h"
#include "platform/database.h"
#include "undo/outcome.h"

namespace quillon {

/// What is to happen with dates that were replaced.
struct DateUndo {
    DateReplaced replaced;
    std::uint64_t rows = 0;  ///< with the later date; 0: nothing to do
    Outcome outcome = {};

    bool IsToDo() const { return rows != 0 && outcome.state == Outcome::State::TakenBack; }
};

/// Looks at the tables and decides, the last one first; changes nothing. `dates` are in the order
/// in which they were replaced. Throws Failure.
std::vector<DateUndo> WayBackOf(Connection& connection, std::span<const DateReplaced> dates);

/// Gives rows the dates back that they had. The outcomes tell of each.
void PutBack(Connection& connection, std::span<DateUndo> dates, const Attempt& attempt);

}  // namespace quillon
