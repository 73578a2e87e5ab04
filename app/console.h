#pragma once

#include <iosfwd>
#include <stdexcept>

namespace quillon {

/// Where a command writes.
struct Console {
    std::ostream& out;
    std::ostream& err;
};

/// Exit statuses that commands share; those of a run are RunSummary's.
constexpr int DoneStatus = 0, FaultsFoundStatus = 1, RefusedStatus = 2;

/// Why a command cannot do what it was asked for; ends it with RefusedStatus.
class CommandError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace quillon
