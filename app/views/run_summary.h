#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "driver/library_form.h"
#include "run/run.h"

namespace quillon {

/// How a run ended.
struct RunSummary {
    RunOutcome outcome = RunOutcome::NothingRan;
    RunCounts counts;
    std::chrono::seconds elapsed{};
};

/// What ends every run, in three lines: outcome, duration and errors; albums and tracks; playlists
/// and tags. Of what was counted only what occurred is told.
std::array<std::string, 3> SummaryLines(const RunSummary& summary);

/// The same for a place of so many columns: each line fits, and the first one tells `record`, the
/// message of the log that says most about the end, as far as there is room. Where not all fits,
/// what was left unchanged is left out first.
std::array<std::string, 3> SummaryLines(const RunSummary& summary, std::string_view record,
                                        std::size_t columns);

/// The three as one line.
std::string SummaryText(const RunSummary& summary);

/// For the error output: what the host's log lacks, with the first errors; nothing where it has
/// all.
std::vector<std::string> LostRecordsLines(const LostRecords& lost, const RunCounts& counts);

/// 0 the mode ran and logged no error, 1 it logged errors or the log did not take all records, 2
/// nothing ran, 3 aborted.
int ExitStatus(const RunSummary& summary);

}  // namespace quillon
