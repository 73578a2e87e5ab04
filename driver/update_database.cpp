#include <initializer_list>

#include "driver/backups.h"
#include "driver/library_form.h"
#include "run/log.h"

/// The part of the form that runs one mode.
namespace quillon {

RunOutcome LibraryForm::UpdateDatabase() {
    const Mode* mode = SelectMode(run_.settings);
    if (mode == nullptr) return RunOutcome::NothingRan;
    return mode->work == nullptr ? RunReconcile(*mode) : RunMode(*mode);
}

RunOutcome LibraryForm::RunMode(const Mode& mode) {
    if (!StartIndicator(mode.indicator)) return Outcome();
    MakeBackups(mode.backups);
    if (!run_.AbortRequested) Perform(procedures_.*mode.work);
    return Outcome();
}

RunOutcome LibraryForm::RunReconcile(const Mode& mode) {
    MakeBackups(mode.backups);
    run_.form.aLblReconcile = true;
    RunPhases(PrepareReconcile());
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
        updateSteps_.Try(0,
                         [&] { run_.connection->Execute("DELETE * FROM SpinnerID3Differences"); });
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
        // A playlist repaired while tracks have no numbers would lose every position, so nothing
        // goes on while they cannot be given back.
        if (!phase.leavesMarks && !GiveBackMarks()) return;
    }
    GiveBackMarks();
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

void LibraryForm::MakeBackups(const BackupPlan& plan) {
    if (plan.database) {
        // The copy is one of the file: it must hold what start-up may have changed.
        updateSteps_.Try(0, [&] { run_.Flush(); });
        TimeStampBackup(run_, run_.settings.Nirvis_CDJ_DB);
    }
    if (plan.playListPath) TimeStampFolderBackup(run_, run_.settings.PlayListPath);
    if (plan.playListPath2) TimeStampFolderBackup(run_, run_.settings.PlayListPath2);
}

void LibraryForm::Perform(const Procedures::Work& work) {
    updateSteps_.Try(0, [&] { work(run_); });
    updateSteps_.Try(0, [&] { run_.Flush(); });
}

/// Gives back what is still set aside; false when that failed.
bool LibraryForm::GiveBackMarks() {
    return updateSteps_.Try(0, [&] {
        if (procedures_.MarkSnapshotExists(run_)) procedures_.RestoreMarks(run_);
    });
}

RunOutcome LibraryForm::Outcome() const {
    return run_.AbortRequested ? RunOutcome::Aborted : RunOutcome::Completed;
}

}  // namespace quillon
