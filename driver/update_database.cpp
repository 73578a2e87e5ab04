#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "driver/backups.h"
#include "driver/library_form.h"
#include "driver/unfinished_files.h"
#include "playlists/playlist_snapshot.h"
#include "run/log.h"

/// The part of the form that runs one mode.
namespace quillon {
namespace {

constexpr std::string_view StopsHere =
    "The run ends here, before it changes the library: what is needed to recover from an "
    "interruption cannot be saved. The next run goes on";

/// What a reconciliation keeps beside the database while it works.
std::string OwnFile(const Settings& settings) {
    return PlaylistSnapshotPath(settings.Nirvis_CDJ_DB);
}

}  // namespace

/// Makes sure that a mode can be gone back on; false when it must not start. Nothing has been
/// changed by then but for what killed runs have left unfinished.
bool LibraryForm::SecureMode(const Mode& mode) {
    if (mode.work != nullptr && !StartIndicator(mode.indicator)) return false;
    RemoveUnfinishedFiles(run_);
    return RequireOwnPlaces(mode) && MakeBackups(mode.backups) && !run_.AbortRequested;
}

RunOutcome LibraryForm::UpdateDatabase(const Mode& mode) {
    if (mode.work == nullptr) {
        run_.form.aLblReconcile = true;
        RunPhases(PrepareReconcile());
    } else {
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
        for (PhaseIndicator& indicator : aPhase)
            indicator.visible = true;
        if (!settings.ID3Reconcile) aPhase[2].visible = false;
        updateSteps_.Try([&] { run_.connection->Execute("DELETE * FROM SpinnerID3Differences"); });
    }
    for (PhaseIndicator& indicator : aPhase)
        indicator.selected = false;
    return {.libraryPresent = !settings.PlaylistsOnly && !settings.LibraryRoot.empty(),
            .playlistsOnly = settings.PlaylistsOnly,
            .id3Reconcile = settings.ID3Reconcile,
            .reconcileOption = settings.ReconcileOption};
}

void LibraryForm::RunPhases(const ReconcileScope& scope) {
    for (const ReconcilePhase& phase : ReconcilePhases()) {
        if (!phase.applies(scope)) continue;
        if (!StartPhase(phase)) break;
        RunPhase(phase);
        if (!run_.isSecured) {
            WriteLog(run_, LogSource, StopsHere);
            break;
        }
    }
}

bool LibraryForm::StartPhase(const ReconcilePhase& phase) {
    if (phase.indicator) return StartIndicator(*phase.indicator);
    run_.StartCounting(0);
    run_.ShowItem(phase.item);
    return !run_.AbortRequested;
}

void LibraryForm::RunPhase(const ReconcilePhase& phase) {
    if (phase.work == nullptr) return;
    if (phase.preparation != nullptr) Perform(procedures_.*phase.preparation);
    Perform(procedures_.*phase.work);
}

/// Lights one indicator of the group; false when the run is to stop.
bool LibraryForm::StartIndicator(std::size_t index) {
    for (PhaseIndicator& indicator : run_.form.aPhase)
        indicator.selected = false;
    run_.StartCounting(0);
    run_.form.aPhase.at(index).visible = true;
    run_.form.aPhase.at(index).selected = true;
    run_.ProcessEvents();
    return !run_.AbortRequested;
}

/// Whether a reconciliation can keep what it knows beside the database. A link or anything else
/// that is no file may have taken that place, and then a run would find out only in the middle.
bool LibraryForm::RequireOwnPlaces(const Mode& mode) {
    if (mode.work != nullptr) return true;
    Steps steps(run_, "QuillonShelfkeeper Main");
    steps.Advising(
        "nothing was changed. A run keeps a file of its own there: remove what has that name, or "
        "give this account the right to write there, and run again");
    return steps.Try([&] { run_.files.CreateOwnText(OwnFile(run_.settings)); });
}

/// The dated copies; false when one failed. They are made before anything writes to the database,
/// so that the file holds all there is.
bool LibraryForm::MakeBackups(const BackupPlan& plan) {
    if (keeping_.newest) return BackUpWhatChanged(run_, plan);
    const Settings& settings = run_.settings;
    std::vector<std::string> copies;
    const auto isMade = [&copies](const Backup& backup) {
        if (!backup.copy.empty()) copies.push_back(backup.copy);
        return backup.succeeded;
    };
    bool made = true;
    if (plan.database) {
        made = isMade(TimeStampBackup(run_, settings.Nirvis_CDJ_DB));
        // What an interrupted run has left beside it is copied, too: neither is complete without
        // the other.
        const std::string own = OwnFile(settings);
        if (made && run_.files.FileExists(own)) made = isMade(TimeStampBackup(run_, own));
    }
    if (made && plan.playListPath)
        made = isMade(TimeStampFolderBackup(run_, settings.PlayListPath));
    if (made && plan.playListPath2)
        made = isMade(TimeStampFolderBackup(run_, settings.PlayListPath2));
    if (!made) TakeBackupsBack(run_, copies);
    return made;
}

void LibraryForm::Perform(const Procedures::Work& work) {
    updateSteps_.Try([&] { work(run_); });
    updateSteps_.Try([&] { run_.Flush(); });
}

RunOutcome LibraryForm::Outcome() const {
    return run_.AbortRequested ? RunOutcome::Aborted : RunOutcome::Completed;
}

}  // namespace quillon
