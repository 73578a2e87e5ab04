#pragma once

#include <chrono>
#include <string>

#include "driver/library_form.h"
#include "run/run.h"

namespace quillon {

/// How a run ended.
struct RunSummary {
    RunOutcome outcome = RunOutcome::NothingRan;
    RunCounts counts;
    std::chrono::seconds elapsed{};
};

/// The line that ends every run: outcome, duration, what was added, changed, removed and left
/// alone, errors.
std::string SummaryText(const RunSummary& summary);

/// 0 the mode ran and logged no error, 1 it logged errors, 2 nothing ran, 3 aborted.
int ExitStatus(const RunSummary& summary);

}  // namespace quillon
