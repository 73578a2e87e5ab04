#include "driver/library_form.h"

#include <algorithm>
#include <chrono>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "backups/backup_list.h"
#include "backups/backups.h"
#include "backups/byte_progress.h"
#include "backups/restore_backup.h"
#include "driver/library_folders.h"
#include "driver/misspelt_setting.h"
#include "driver/phase_captions.h"
#include "driver/settings_reader.h"
#include "driver/unfinished_files.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "playlists/playlist_snapshot.h"
#include "run/connection_value.h"
#include "run/counted.h"
#include "run/excluded_artists.h"
#include "run/log.h"

namespace quillon {
namespace {

constexpr std::string_view PluginName = "Quillon";
constexpr std::string_view PluginMissing =
    "Quillon must be enabled to perform management activities";
constexpr std::string_view StopsHere =
    "The run ends here, before it changes the library: what is needed to recover from an "
    "interruption cannot be saved. The next run goes on";

/// The part of the bar in which a mode makes its backups. Those of a reconciliation come before its
/// phases, and have a bar of their own.
double PartOfBackups(const Mode& mode) {
    if (mode.IsReconciliation()) return 1;
    return mode.backups.empty() ? 0 : 0.3;
}

/// What a reconciliation keeps beside the database while it works.
std::string OwnFile(const Settings& settings) {
    return PlaylistSnapshotPath(settings.Nirvis_CDJ_DB);
}

}  // namespace

std::string LibraryConnectionString(std::string_view database) {
    const bool endsEarly = database.find(';') != std::string_view::npos ||
                           database.starts_with('"') || database.starts_with('\'');
    return std::string(ConnectionPrefix) +
           (endsEarly ? QuotedConnectionValue(database, '"') : std::string(database));
}

LibraryForm::LibraryForm(Run& run, DatabaseProvider& databases, std::string_view version,
                         Procedures procedures)
    : run_(run),
      databases_(databases),
      version_(version),
      procedures_(std::move(procedures)),
      updateSteps_(run, "Update Database Error:") {
    run_.databases = &databases_;
    for (std::size_t i = 0; i < PhaseCount; ++i)
        run_.form.aPhase[i].caption = PhaseCaptions[i];
}

RunOutcome LibraryForm::Form_Load() {
    RunOutcome outcome = RunOutcome::NothingRan;
    Steps steps(run_, "QuillonShelfkeeper Load");
    steps.Try([&] {
        run_.form.lblver = "Version " + version_;
        run_.settings = ReadSettings(run_.host);
        run_.removals.limits = ReadSafetyLimits(run_.host);
        run_.movedMusic = ReadMovedMusicSettings(run_.host);
        run_.modern = ReadModernMusic(run_.host);
        run_.LibraryFolders = BuildLibraryFolders(run_.files, run_.settings);
        if (!PluginIsEnabled()) {
            WriteLog(run_, LogSource, PluginMissing);
            return;
        }
        RefuseMisspeltSettings();
        RefuseHalfRestored();
        keeping_ = ReadBackupKeeping(run_.host);
        HideIndicators();
        ReadExcludeList(run_);
        run_.window.Show(run_.form);
        outcome = main();
        RemoveOldCopies(outcome);
    });
    Release();
    return outcome;
}

RunOutcome LibraryForm::main() {
    RunOutcome outcome = RunOutcome::NothingRan;
    Steps steps(run_, "QuillonShelfkeeper Main");
    steps.Try([&] {
        run_.connection = databases_.Open(LibraryConnectionString(run_.settings.Nirvis_CDJ_DB));
        run_.random.Seed(run_.clock.Now(), run_.clock.Nanoseconds());
        ReadGenreNames();
        const Mode* const mode = SelectMode(run_.settings);
        if (mode != nullptr && !SecureMode(*mode)) {
            if (run_.AbortRequested) outcome = RunOutcome::Aborted;
            return;
        }
        procedures_.BuildORsRecordset(run_);
        procedures_.PopulateGenre(run_);
        if (mode != nullptr) outcome = UpdateDatabase(*mode);
    });
    // Done here, because a connection that is being closed cannot report a failure.
    steps.Try([&] {
        if (run_.connection) run_.Flush();
    });
    run_.ForgetTables();
    run_.connection.reset();
    run_.playlistEntries = {};
    return outcome;
}

bool LibraryForm::PluginIsEnabled() {
    const std::vector<std::string> plugins = run_.host.GetPlugins();
    return std::find(plugins.begin(), plugins.end(), PluginName) != plugins.end();
}

void LibraryForm::RefuseMisspeltSettings() {
    const std::string objection = ObjectionToMisspeltSetting(run_.host, run_.settings);
    if (!objection.empty())
        throw Failure::Described(FailureNumber::InvalidProcedureCall, objection);
}

/// The playlists may be those of another database by now, and would be repaired after it.
void LibraryForm::RefuseHalfRestored() {
    const std::string backup = UnfinishedRestore(run_.files, run_.settings.Nirvis_CDJ_DB);
    if (backup.empty()) return;
    throw Failure::Described(
        FailureNumber::InvalidProcedureCall,
        "the backup " + backup +
            " has been put back only in part. Nothing was changed: complete that "
            "with 'quillon restore " +
            backup + "', and run again");
}

/// After a run that went well alone: after any other, old backups may be what somebody needs.
void LibraryForm::RemoveOldCopies(RunOutcome outcome) {
    if (keeping_.newest && outcome == RunOutcome::Completed && run_.counts.errors == 0)
        RemoveOldBackups(run_, *keeping_.newest);
}

void LibraryForm::HideIndicators() {
    run_.form.aLblReconcile = false;
    for (PhaseIndicator& indicator : run_.form.aPhase)
        indicator.visible = false;
}

void LibraryForm::ReadGenreNames() {
    const std::unique_ptr<RecordSet> rows = run_.connection->OpenTable("SpinnerGenre");
    run_.GenreNames.fill("");
    for (; !rows->IsEof(); rows->MoveNext()) {
        if (IsNull(rows->Get("GenreID"))) {
            throw Failure(FailureNumber::TypeMismatch, "SpinnerGenre, GenreID is Null");
        }
        const std::int64_t id = rows->Integer("GenreID");
        if (id < 0 || id >= static_cast<std::int64_t>(run_.GenreNames.size())) {
            throw Failure(FailureNumber::SubscriptOutOfRange,
                          "SpinnerGenre, GenreID " + std::to_string(id));
        }
        run_.GenreNames[static_cast<std::size_t>(id)] = rows->Text("Genre");
    }
}

/// Makes sure that a mode can be gone back on; false when it must not start. Nothing has been
/// changed by then but for what killed runs have left unfinished.
bool LibraryForm::SecureMode(const Mode& mode) {
    if (!mode.IsReconciliation() && !StartIndicator(mode.indicator)) return false;
    RemoveUnfinishedFiles(run_);
    const Share share(run_, 0, PartOfBackups(mode));
    return RequireOwnPlaces(mode) && MakeBackups(mode.backups) && !run_.AbortRequested;
}

RunOutcome LibraryForm::UpdateDatabase(const Mode& mode) {
    if (mode.IsReconciliation()) {
        run_.form.aLblReconcile = true;
        RunPhases(PrepareReconcile());
    } else {
        const Share share(run_, PartOfBackups(mode), 1);
        Perform(procedures_.*mode.work);
    }
    return Outcome();
}

ReconcileScope LibraryForm::PrepareReconcile() {
    Settings& settings = run_.settings;
    auto& aPhase = run_.form.aPhase;
    if (settings.PlaylistsOnly) {
        for (const std::size_t i : {0U, 7U, 8U})
            aPhase[i].visible = true;
        settings.ID3Reconcile = false;
    } else {
        for (std::size_t i = 0; i < aPhase.size(); ++i) {
            aPhase[i].visible = true;
            aPhase[i].isOtherMode = i >= FirstOtherPhase;
        }
        if (!settings.ID3Reconcile) aPhase[2].visible = false;
    }
    for (PhaseIndicator& indicator : aPhase)
        indicator.selected = false;
    return {.libraryPresent = !settings.PlaylistsOnly && !settings.LibraryRoot.empty(),
            .playlistsOnly = settings.PlaylistsOnly,
            .id3Reconcile = settings.ID3Reconcile,
            .reconcileOption = settings.ReconcileOption};
}

void LibraryForm::EmptyDifferences() {
    updateSteps_.Try([&] { run_.connection->Execute("DELETE * FROM SpinnerID3Differences"); });
}

void LibraryForm::RunPhases(const ReconcileScope& scope) {
    // The comparison of tags puts its own rows in the place of those that are there. Most of them
    // are the same, and may stay where they are.
    bool hasOldDifferences = scope.ComparesTags();
    if (!hasOldDifferences && !scope.playlistsOnly) EmptyDifferences();
    for (const ReconcilePhase& phase : ReconcilePhases()) {
        if (!phase.applies(scope)) continue;
        if (!StartPhase(phase)) break;
        if (phase.work == &Procedures::VerifyID3Tags) hasOldDifferences = false;
        RunPhase(phase);
        if (!run_.isSecured) {
            WriteLog(run_, LogSource, StopsHere);
            break;
        }
    }
    if (hasOldDifferences) EmptyDifferences();
}

bool LibraryForm::StartPhase(const ReconcilePhase& phase) {
    if (phase.indicator) return StartIndicator(*phase.indicator);
    run_.form.progress = {};
    run_.ShowItem(phase.item);
    return !run_.AbortRequested;
}

void LibraryForm::RunPhase(const ReconcilePhase& phase) {
    const auto start = std::chrono::steady_clock::now();
    std::optional<Share> share;
    if (phase.preparation != nullptr) {
        share.emplace(run_, 0, 0.3);
        Perform(procedures_.*phase.preparation);
        share.reset();
        share.emplace(run_, 0.3, 1);
    }
    if (phase.work != nullptr) Perform(procedures_.*phase.work);
    if (!phase.indicator || run_.AbortRequested) return;
    run_.form.aPhase.at(*phase.indicator).took =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                              start);
}

/// Lights one indicator of the group; false when the run is to stop.
bool LibraryForm::StartIndicator(std::size_t index) {
    for (PhaseIndicator& indicator : run_.form.aPhase)
        indicator.selected = false;
    run_.form.progress = {};
    run_.form.aPhase.at(index).visible = true;
    run_.form.aPhase.at(index).selected = true;
    run_.ProcessEvents();
    return !run_.AbortRequested;
}

/// Whether a reconciliation can keep what it knows beside the database. A link or anything else
/// that is no file may have taken that place, and then a run would find out only in the middle.
bool LibraryForm::RequireOwnPlaces(const Mode& mode) {
    if (!mode.IsReconciliation()) return true;
    Steps steps(run_, "QuillonShelfkeeper Main");
    steps.Advising(
        "nothing was changed. A run keeps a file of its own there: remove what has that name, or "
        "give this account the right to write there, and run again");
    return steps.Try([&] { run_.files.CreateOwnText(OwnFile(run_.settings)); });
}

/// The dated copies; false when one failed. They are made before anything writes to the database,
/// so that the file holds all there is.
bool LibraryForm::MakeBackups(std::span<const BackedUp> originals) {
    if (keeping_.newest) return BackUpWhatChanged(run_, originals);
    std::vector<std::string> copies;
    const ByteProgress progress(run_, BackupOriginals(run_.settings, originals));
    const bool made = std::ranges::all_of(
        originals, [&](const BackedUp& original) { return MakeBackup(original, copies); });
    if (!made) TakeBackupsBack(run_, copies);
    return made;
}

/// Copies one of them, and notes what was made for it.
bool LibraryForm::MakeBackup(const BackedUp& original, std::vector<std::string>& copies) {
    const auto isMade = [&copies](const Backup& backup) {
        if (!backup.copy.empty()) copies.push_back(backup.copy);
        return backup.succeeded;
    };
    const std::string& path = run_.settings.*original.path;
    if (original.isFolder) return isMade(TimeStampFolderBackup(run_, path));
    const auto isNoteMade = [&](const BackupOriginal& note) {
        return !run_.files.FileExists(note.path) || isMade(TimeStampBackup(run_, note.path));
    };
    return isMade(TimeStampBackup(run_, path)) &&
           std::ranges::all_of(NotesBeside(path), isNoteMade);
}

void LibraryForm::Perform(const Procedures::Work& work) {
    updateSteps_.Try([&] { work(run_); });
    updateSteps_.Try([&] { run_.Flush(); });
}

RunOutcome LibraryForm::Outcome() const {
    return run_.AbortRequested ? RunOutcome::Aborted : RunOutcome::Completed;
}

void LibraryForm::Release() {
    run_.LibraryFolders.clear();
    run_.window.Unload();
}

}  // namespace quillon
