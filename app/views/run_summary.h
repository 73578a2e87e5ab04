#pragma once

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
    std::chrono::milliseconds elapsed{};
    Removals::AllGone gone{};
    bool saved = true;  ///< see RunReport, also for the next
    bool braked = false;
    bool keepsRemoved = true;  ///< removed music lies in the host folder and is not lost
    bool stopped = false;      ///< by a journal that took no more
};

/// What ends every run, in three lines: outcome, duration and errors; albums and tracks; all else.
/// Counts of zero are left out.
std::vector<std::string> SummaryLines(const RunSummary& summary);

/// The same for a place of so many columns: each line fits, and the first one tells `record`, the
/// message of the log that says most about the end, as far as there is room. Where not all albums
/// and tracks fit, what was left unchanged is left out first; everything else takes the lines it
/// needs.
std::vector<std::string> SummaryLines(const RunSummary& summary, std::string_view record,
                                      std::size_t columns);

/// The three as one line.
std::string SummaryText(const RunSummary& summary);

/// What went away: a line for each kind of things with how many they were, then up to `mostNames`
/// of their names, then how many more there are. No line where nothing went.
std::vector<std::string> LossLines(const RunSummary& summary,
                                   std::size_t mostNames = Removals::MostNames);

/// The same for a place of so many columns and lines, with as many names as fit.
std::vector<std::string> LossLines(const RunSummary& summary, std::size_t columns,
                                   std::size_t mostLines);

/// For the error output: what the host's log lacks, with the first errors; nothing where it has
/// all.
std::vector<std::string> LostRecordsLines(const LostRecords& lost, const RunCounts& counts);

/// 0 the mode ran and logged no error, 1 it logged errors or the log did not take all records, 2
/// nothing ran, 3 aborted. A run that its journal stopped counts as one with errors.
int ExitStatus(const RunSummary& summary);

}  // namespace quillon
