#include "app/commands/undo_work.h"

#include <algorithm>
#include <chrono>
#include <fmt/format.h>
#include <map>
#include <unordered_set>
#include <utility>

#include "app/console.h"
#include "app/interrupted_writes.h"
#include "app/journal/journal_file.h"
#include "app/removed_music.h"
#include "app/version.h"
#include "changes/journalled_files.h"
#include "changes/preview_files.h"
#include "driver/library_form.h"
#include "driver/settings_reader.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "run/log.h"

namespace quillon {
namespace {

using Work = RowUndo::Step::Work;

/// Puts the records of changes together.
class ChangeCollector : public ChangeSink {
  public:
    void Note(const ChangeRecord& record) override { net_.Add(record); }
    void MakeDurable() override {}
    NetChanges Take() { return net_.Take(); }

  private:
    NetChangesCollector net_;
};

/// The change of a row that a step would make.
RowChange ChangeOf(const RowUndo::Step& step) {
    const NetRow& row = *step.row;
    RowChange change{
        .table = row.table, .key = row.now.exists ? row.now.key : row.before.key, .fields = {}};
    const auto valueIn = [](const RowState& state, std::string_view field) -> Value {
        const auto found = state.fields.find(field);
        return found == state.fields.end() ? Value(Null()) : found->second;
    };
    if (step.work == Work::Insert) {
        change.kind = RowChange::Kind::Added;
        for (const auto& [field, value] : row.before.fields)
            change.fields.push_back({std::string(field), Null(), value});
    } else if (step.work == Work::Delete) {
        // What names it.
        change.kind = RowChange::Kind::Removed;
        for (const auto& [field, value] : row.now.fields)
            if (std::holds_alternative<std::string>(value))
                change.fields.push_back({std::string(field), value, Null()});
    } else {
        for (const auto& [field, value] : row.before.fields)
            if (valueIn(row.now, field) != value)
                change.fields.push_back({std::string(field), valueIn(row.now, field), value});
    }
    return change;
}

DateReplaced ChangeOf(const DateUndo& undo) {
    return {.table = undo.replaced.table,
            .field = undo.replaced.field,
            .before = undo.replaced.after,
            .after = undo.replaced.before,
            .rows = undo.rows};
}

std::string WithoutPeriod(std::string text) {
    if (text.ends_with('.')) text.pop_back();
    return text;
}

std::string FailureIn(const std::function<void()>& work) {
    try {
        work();
        return "";
    } catch (const Failure& failure) {
        return WithoutPeriod(failure.what());
    }
}

bool IsOfFiles(const ChangeRecord& record) {
    return std::holds_alternative<FileChange>(record) ||
           std::holds_alternative<FileChangeFailed>(record);
}

}  // namespace

UndoWork::UndoWork(LocalHost& local, std::string_view stamp) : local_(local), stamp_(stamp) {
    // Before the journals are read, so that no run writes one meanwhile.
    OpenDatabase();
    writesLeft_ =
        PutInterruptedWritesRight(local_, "", [this](LogKind kind, const std::string& message) {
            if (kind == LogKind::Error) troubles_.push_back(message);
            FailureIn([&] { local_.host.WriteLog(LogSource, message); });
        });
    const auto journals = JournalsIn(ChangesFolder(local_.host.Folder()));
    std::vector<PastRun> runs;
    runs.reserve(journals.size());
    for (const std::filesystem::path& journal : journals)
        runs.push_back(LookAtJournal(journal));
    const History history(std::move(runs));
    if (stamp_.empty() || stamp_ == "last") stamp_ = history.LastToUndo();
    if (stamp_.empty()) throw CommandError("There is no run that can be taken back");
    stamp_ = history.FirstPartOf(stamp_);
    partBefore_ = history.PartBefore(stamp_);
    ReadJournals(journals, history);
    LookAtRows();
}

void UndoWork::ReadJournals(const std::vector<std::filesystem::path>& journals,
                            const History& history) {
    const std::vector<std::size_t> newestFirst = history.ForFiles(stamp_);
    if (newestFirst.empty()) {
        throw CommandError(fmt::format(
            "There is no run {}; 'quillon changes --list' shows those that there are", stamp_));
    }
    const std::vector<std::size_t> forRows = history.ForRows(stamp_),
                                   undosSince = history.UndosSince(stamp_);
    std::map<std::size_t, RecordedRun> recorded;
    for (const std::vector<std::size_t>* const some : {&newestFirst, &undosSince, &forRows})
        for (const std::size_t run : *some)
            recorded[run];
    NetRows net;
    for (auto& [run, files] : recorded) {
        const bool isForRows = std::ranges::binary_search(forRows, run);
        if (isForRows) net.StartRun();
        const JournalContent content = VisitJournal(journals[run], [&](ChangeRecord&& record) {
            if (isForRows) net.Add(record);
            if (IsOfFiles(record)) files.records.push_back(std::move(record));
        });
        files.stamp = content.stamp;
        files.isWhole = content.isWhole;
        if (std::ranges::count(newestFirst, run) > 0)
            NoteDamaged(content, journals[run].filename().string());
    }
    std::vector<RecordedRun> runs, undos;
    const auto note = [&](std::size_t run) {
        if (!history.Runs()[run].ended) writes_ = Writes::PerhapsTorn;
    };
    std::ranges::for_each(newestFirst, note);
    std::ranges::for_each(undosSince, note);
    for (const std::size_t undo : undosSince)
        undos.push_back(recorded[undo]);
    for (const std::size_t run : newestFirst) {
        const PastRun& past = history.Runs()[run];
        const bool isNamed = past.started.stamp == stamp_;
        if (isNamed || (past.changes > 0 && history.UndoneBy(run).empty())) runs_.push_back(past);
        runs.push_back(std::move(recorded[run]));
    }
    steps_ = FileStepsFor(runs, TakenBack(undos));
    rows_ = net.Take();
    dates_ = net.Dates();
}

void UndoWork::NoteDamaged(const JournalContent& content, const std::string& journal) {
    for (const DamagedPlace& place : content.damaged) {
        // A line that was cut short tells of nothing that has happened.
        if (place.isCutShort) continue;
        damaged_.push_back(fmt::format(
            "line {} of {} cannot be read: what it tells of stays as it is", place.line, journal));
    }
}

void UndoWork::OpenDatabase() {
    const Settings settings = InspectSettings(local_.host).settings;
    const std::string failure = FailureIn([&] {
        if (settings.Nirvis_CDJ_DB.empty() || !local_.files.FileExists(settings.Nirvis_CDJ_DB))
            return;
        local_.databases.SetObserver(&recorder_);
        connection_ = local_.databases.Open(std::string(ConnectionPrefix) + settings.Nirvis_CDJ_DB);
    });
    if (!failure.empty()) {
        throw CommandError(fmt::format("Nothing was taken back: {}", failure));
    }
}

/// Nobody changes a row from here on.
void UndoWork::LookAtRows() {
    if (rows_.empty() && dates_.empty()) return;
    if (!connection_) throw CommandError("Nothing was taken back: the database is not there");
    rowUndo_.emplace(*connection_, rows_, dates_);
    // Albums of rows that stay do so, too, and so do their covers.
    rowUndo_->HoldBack([](std::string_view) { return false; });
    heldPaths_ = TextsOfRefused(rowUndo_->Steps());
}

void UndoWork::HoldRowsBack() {
    const FilesThatStay stay(steps_);
    rowUndo_->HoldBack([&](std::string_view path) { return stay.Has(path); });
}

/// With the names that they have now.
void UndoWork::TellRefusedRows(std::vector<std::string>& refused) {
    const auto changeOf = [](const NetRow& row) {
        return RowChange{.table = row.table, .key = row.now.key, .fields = {}};
    };
    std::vector<const RowUndo::Step*> steps;
    RowNames::Rows rows;
    for (const RowUndo::Step& step : rowUndo_->Steps()) {
        if (step.outcome.state != Outcome::State::Refused) continue;
        steps.push_back(&step);
        RowNames::AddUnnamed(changeOf(*step.row), rows);
    }
    const RowNames names(*connection_, rows);
    for (const RowUndo::Step* const step : steps)
        refused.push_back(NameOf(*step->row, names.Of(changeOf(*step->row))) + ": " +
                          step->outcome.reason);
    for (const DateUndo& date : rowUndo_->Dates())
        if (date.outcome.state == Outcome::State::Refused)
            refused.push_back(fmt::format("{} of {} rows of {}: {}", date.replaced.field, date.rows,
                                          date.replaced.table, date.outcome.reason));
}

UndoWork::Result UndoWork::Plan() {
    Result result;
    ChangeCollector collector;
    sink_.PassTo(&collector);
    PreviewFiles preview(local_.files, local_.clock);
    PutFilesBack(
        preview, "undo",
        [&](const UndoMeans& means, const StepOptions& options) {
            JournalledFiles files(means.files, means.journal, means.keeping);
            FileUndo undo(files, means.hostFolder, means.writes);
            quillon::CarryOut(steps_, undo, FailureIn, options);
        },
        result.refused);
    if (rowUndo_) {
        HoldRowsBack();
        for (const RowUndo::Step& step : rowUndo_->Steps())
            if (step.IsToDo()) collector.Note(ChangeOf(step));
        for (const DateUndo& date : rowUndo_->Dates())
            if (date.IsToDo()) collector.Note(ChangeOf(date));
        TellRefusedRows(result.refused);
    }
    sink_.PassTo(nullptr);
    result.changes = collector.Take();
    if (rowUndo_) {
        RowNames::Rows rows;
        for (const RowChange& change : result.changes.rows)
            RowNames::AddUnnamed(change, rows);
        result.names = RowNames(*connection_, rows);
    }
    return result;
}

UndoWork::Ended UndoWork::CarryOut() {
    const auto start = std::chrono::steady_clock::now();
    std::optional<JournalFile> started;
    const std::string refusal = FailureIn([&] {
        started.emplace(ChangesFolder(local_.host.Folder()), local_.clock);
        started->Note(RunStarted{.stamp = started->Stamp(),
                                 .version = std::string(ProgramVersion),
                                 .mode = "undo",
                                 .undoes = stamp_});
    });
    if (!refusal.empty()) {
        throw CommandError(
            "Nothing was taken back, since the journal of changes cannot be started: " + refusal);
    }
    JournalFile& journal = *started;
    for (const WriteLeft& left : writesLeft_)
        journal.Remark(left);
    Ended ended{.refused = {},
                .changes = 0,
                .stamp = journal.Stamp(),
                .firstPart = partBefore_.empty() ? journal.Stamp() : partBefore_};
    sink_.PassTo(&journal);
    const auto end = [&](const char* outcome, int status) {
        journal.Remark(RunEnded{.outcome = outcome,
                                .status = status,
                                .duration = std::chrono::duration_cast<std::chrono::milliseconds>(
                                    std::chrono::steady_clock::now() - start)});
    };
    const Attempt attempt = [&](const std::function<void()>& work) {
        std::string failure = FailureIn(work);
        if (!journal.Trouble().empty()) throw CommandError(journal.Trouble());
        return failure;
    };
    try {
        PutFilesBack(
            local_.files, journal.Stamp(),
            [&](const UndoMeans& means, const StepOptions& options) {
                CarryOutAnnounced(steps_, means, attempt, options);
            },
            ended.refused);
        PutRowsBack(attempt, ended.refused);
        rowUndo_.reset();
        connection_.reset();
        // What the journal says is done must not be lost in a power cut: nobody would go on.
        local_.files.SyncChanges();
    } catch (const std::exception& error) {
        // Without its end a journal says that one has to look.
        if (FailureIn([&] { local_.files.SyncChanges(); }).empty()) end("failed", RefusedStatus);
        sink_.PassTo(nullptr);
        throw CommandError(fmt::format("The undo was stopped: {}. Started again, it goes on",
                                       WithoutPeriod(DescriptionOf(error))));
    }
    end("completed", ended.refused.empty() ? DoneStatus : FaultsFoundStatus);
    sink_.PassTo(nullptr);
    ended.changes = journal.Changes();
    return ended;
}

/// Copies that go are kept as music is that a run removes; pages of the picker are made again by a
/// run.
bool UndoWork::GoesToRemoved(std::string_view path) const {
    const bool isCopy =
        step_ != nullptr && step_->change.kind == FileChange::Kind::Copied && !step_->change.before;
    return isCopy &&
           !LowerCase(path).starts_with(LowerCase(local_.host.GetAppPath() + R"(\HTML\)"));
}

void UndoWork::PutFilesBack(Files& files, const std::string& keeping, const StepWork& carryOut,
                            std::vector<std::string>& refused) {
    RemovedFiles removed(RemovedMusicFolder(local_.host), local_.clock);
    JournalledFiles::Keeping kept{
        .folder = local_.host.GetAppPath() + R"(\Changes\)" + keeping,
        .shownFolder = "Changes/" + keeping,
        .placeOfDeleted = [&](std::string_view path) -> std::optional<std::string> {
            if (!GoesToRemoved(path)) return std::nullopt;
            return removed.PlaceFor(local_.files.AsOnDisk(path))
                .lexically_relative(local_.host.Folder())
                .generic_string();
        },
        .isScratch = {},
        .exactTimeOf = [&](std::string_view path) { return local_.files.ExactTimeOf(path); }};
    local_.files.OnDelete([&](const std::string& local, const WindowsPath& shown) {
        if (!GoesToRemoved(shown.Text())) return false;
        removed.Take(local, shown);
        return true;
    });
    for (FileStep& step : steps_)
        step.outcome = {};
    carryOut({.files = files,
              .clock = local_.clock,
              .journal = sink_,
              .keeping = std::move(kept),
              .hostFolder = local_.host.GetAppPath(),
              .writes = writes_,
              .sync = [&] { local_.files.SyncChanges(); }},
             {.beginning = [&](const FileStep& step) { step_ = &step; },
              .isHeld = [&](const std::string& path) { return heldPaths_.contains(path); }});
    step_ = nullptr;
    local_.files.OnDelete({});
    refused = damaged_;
    std::unordered_set<std::string> told;
    for (const FileStep& step : steps_)
        if (step.outcome.state == Outcome::State::Refused &&
            told.insert(step.outcome.reason).second)
            refused.push_back(step.outcome.reason);
}

void UndoWork::PutRowsBack(const Attempt& attempt, std::vector<std::string>& refused) {
    if (!rowUndo_) return;
    HoldRowsBack();
    JetDatabaseProvider::Together(*connection_, [&] { rowUndo_->CarryOut(attempt); });
    TellRefusedRows(refused);
}

}  // namespace quillon
