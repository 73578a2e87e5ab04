#include "app/commands/changes_command.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>
#include <optional>
#include <ostream>
#include <unordered_set>
#include <utility>
#include <vector>

#include "app/journal/change_text.h"
#include "app/journal/journal_file.h"
#include "app/journal/journal_lines.h"
#include "app/journal/journal_reader.h"
#include "app/journal/net_changes.h"
#include "app/journal/row_names.h"
#include "app/local_host.h"
#include "app/text/display_text.h"
#include "app/value_text.h"
#include "changes/preview_files.h"
#include "driver/settings_reader.h"
#include "platform/failure.h"
#include "undo/file_undo.h"

namespace quillon {
namespace {

using Journals = std::vector<std::filesystem::path>;

std::string OutcomeText(const PastRun& run) {
    return run.ended ? run.ended->outcome : "killed, or still going on";
}

History HistoryOf(const Journals& journals) {
    std::vector<PastRun> runs;
    for (const std::filesystem::path& journal : journals)
        runs.push_back(LookAtJournal(journal));
    return History(std::move(runs));
}

/// The first part of an undo that was started again; "" for all other runs.
std::string GoesOnWith(const History& history, const PastRun& run) {
    const std::string first = history.FirstPartOf(run.started.stamp);
    return first == run.started.stamp ? "" : first;
}

void ListAsJson(std::ostream& out, const History& history) {
    for (std::size_t i = 0; i < history.Runs().size(); ++i) {
        const PastRun& run = history.Runs()[i];
        out << fmt::format(R"({{"run":{},"mode":{},"outcome":{},"changes":{})",
                           JsonString(run.started.stamp), JsonString(run.started.mode),
                           JsonString(run.ended ? run.ended->outcome : ""), run.changes);
        if (run.ended) out << fmt::format(R"(,"status":{})", run.ended->status);
        if (run.IsUndo()) out << R"(,"undoes":)" << JsonString(run.started.undoes);
        const std::string continued = GoesOnWith(history, run);
        if (!continued.empty()) out << R"(,"goesOnWith":)" << JsonString(continued);
        const std::string undoneBy = history.UndoneBy(i);
        if (!undoneBy.empty()) out << R"(,"undoneBy":)" << JsonString(undoneBy);
        out << "}\n";
    }
}

void List(std::ostream& out, const History& history) {
    for (std::size_t i = 0; i < history.Runs().size(); ++i) {
        const PastRun& run = history.Runs()[i];
        std::string line =
            fmt::format("{}  {}: {}", run.started.stamp, run.started.mode, OutcomeText(run));
        line += run.changes == 1 ? ", 1 change" : fmt::format(", {} changes", run.changes);
        if (run.IsUndo()) line += ", takes back " + run.started.undoes;
        const std::string continued = GoesOnWith(history, run);
        if (!continued.empty()) line += ", goes on with " + continued;
        const std::string undoneBy = history.UndoneBy(i);
        if (!undoneBy.empty()) line += ", taken back by " + undoneBy;
        out << OneLine(line) << '\n';
    }
    if (history.Runs().empty()) out << "There has been no run yet.\n";
}

/// Whether the disk still is as it was before a change of a file. What cannot be told has perhaps
/// been done.
bool IsUndone(LocalHost& local, const FileChange& change) {
    PreviewFiles preview(local.files, local.clock);
    FileUndo undo(preview, local.host.GetAppPath());
    try {
        return undo.TakeBack(change).state == Outcome::State::WasSo;
    } catch (const Failure&) {
        return false;
    }
}

/// What a run had planned and not done when it was killed, by the places of its records: rows that
/// were not saved, and of the last files, which were recorded together, those that are as they were
/// where nothing of rows has been noted behind them.
struct PlannedOnly {
    std::size_t rowsFrom = SIZE_MAX;
    std::unordered_set<std::size_t> files = {};

    bool Has(std::size_t place, const ChangeRecord& record) const {
        const bool isOfRows = std::holds_alternative<RowChange>(record) ||
                              std::holds_alternative<DateReplaced>(record);
        return files.contains(place) || (place >= rowsFrom && isOfRows);
    }
};

PlannedOnly PlannedIn(LocalHost& local, const std::filesystem::path& journal) {
    PlannedOnly planned{.rowsFrom = 0};
    std::size_t count = 0;
    /// By their places.
    std::vector<std::pair<std::size_t, FileChange>> last;
    const auto visit = [&](ChangeRecord&& record) {
        const std::size_t place = count++;
        if (std::holds_alternative<RowsSaved>(record)) planned.rowsFrom = count;
        if (const auto* const file = std::get_if<FileChange>(&record)) {
            if (!last.empty() && FirstOfGroup(*file) > last.back().second.number) last.clear();
            last.emplace_back(place, *file);
        } else if (!std::holds_alternative<FileChangeFailed>(record)) {
            last.clear();
        }
    };
    if (VisitJournal(journal, visit).isWhole) return {};
    for (const auto& [place, change] : last)
        if (IsUndone(local, change)) planned.files.insert(place);
    return planned;
}

JournalContent ShowAsJson(std::ostream& out, const std::filesystem::path& journal,
                          const PlannedOnly& planned) {
    std::size_t place = 0;
    JournalContent content = VisitJournal(journal, [&](ChangeRecord&& record) {
        std::string line = ToLine(record);
        if (planned.Has(place++, record)) line.insert(line.size() - 1, R"(,"plannedNotDone":true)");
        out << line << '\n';
    });
    for (const DamagedPlace& damaged : content.damaged) {
        out << fmt::format(R"({{"record":"damaged","line":{},"cutShort":{}}})", damaged.line,
                           damaged.isCutShort)
            << '\n';
    }
    return content;
}

/// "" where the settings name none that can be found.
std::filesystem::path DatabaseOf(LocalHost& local) {
    try {
        return local.resolver.Local(InspectSettings(local.host).settings.Nirvis_CDJ_DB);
    } catch (const Failure&) {
        return "";
    }
}

/// With the names that rows have now.
std::string TextOf(const NetChanges& changes, const std::filesystem::path& database) {
    const RowNames names(database, changes.rows);
    return ChangeText(changes,
                      {.nameOf = [&names](const RowChange& row) { return names.Of(row); }});
}

JournalContent Show(std::ostream& out, const PastRun& run, const std::string& goesOnWith,
                    const std::filesystem::path& journal, const PlannedOnly& planned,
                    const std::filesystem::path& database) {
    NetChangesCollector done, notDone;
    std::vector<ChangeRecord> log;
    std::size_t place = 0;
    JournalContent content = VisitJournal(journal, [&](ChangeRecord&& record) {
        (planned.Has(place++, record) ? notDone : done).Add(record);
        if (std::holds_alternative<LogLine>(record)) log.push_back(std::move(record));
    });
    out << OneLine(
               fmt::format("Run {}, {}: {}", run.started.stamp, run.started.mode, OutcomeText(run)))
        << '\n';
    if (run.IsUndo()) out << OneLine("It takes back " + run.started.undoes) << '\n';
    if (!goesOnWith.empty()) {
        out << fmt::format(
            "It goes on with {0}, which has not done all of it; 'quillon changes {0}' shows that "
            "part\n",
            goesOnWith);
    }
    const std::string changes = TextOf(done.Take(), database);
    const std::string others = TextOf(notDone.Take(), database);
    out << '\n' << (changes.empty() ? "Nothing was changed.\n" : changes);
    if (!others.empty()) out << "\nPlanned, not done:\n\n" << others;
    const std::string logged = LogText(log);
    if (!logged.empty()) out << '\n' << logged;
    return content;
}

void TellDamage(std::ostream& err, const JournalContent& journal,
                const std::filesystem::path& file) {
    for (const DamagedPlace& place : journal.damaged) {
        err << "quillon: "
            << OneLine(fmt::format("line {} of {} {}", place.line, file.string(),
                                   place.isCutShort ? "was cut short: what it was to tell of has "
                                                      "not been done"
                                                    : "cannot be read"))
            << '\n';
    }
}

std::size_t Chosen(const History& history, const std::string& wanted) {
    const std::vector<PastRun>& runs = history.Runs();
    if (runs.empty()) throw CommandError("There has been no run yet");
    if (wanted.empty() || wanted == "last") return runs.size() - 1;
    for (std::size_t i = 0; i < runs.size(); ++i)
        if (runs[i].started.stamp == wanted) return i;
    throw CommandError(fmt::format(
        "There is no run {}; 'quillon changes --list' shows those that there are", wanted));
}

}  // namespace

int Changes(const ChangesRequest& request, Console console) {
    LocalHost local(request.host, [](LogKind, const std::string&) {});
    const Journals journals = JournalsIn(ChangesFolder(local.host.Folder()));
    const History history = HistoryOf(journals);
    if (request.list) {
        request.json ? ListAsJson(console.out, history) : List(console.out, history);
        return DoneStatus;
    }
    const std::size_t run = Chosen(history, request.run);
    const PastRun& past = history.Runs()[run];
    const PlannedOnly planned = past.ended ? PlannedOnly() : PlannedIn(local, journals[run]);
    const JournalContent journal = request.json ? ShowAsJson(console.out, journals[run], planned)
                                                : Show(console.out, past, GoesOnWith(history, past),
                                                       journals[run], planned, DatabaseOf(local));
    TellDamage(console.err, journal, journals[run]);
    const bool isDamaged = std::ranges::any_of(
        journal.damaged, [](const DamagedPlace& place) { return !place.isCutShort; });
    return isDamaged ? FaultsFoundStatus : DoneStatus;
}

}  // namespace quillon
