#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "backups/kept_backups.h"
#include "driver/modes.h"
#include "driver/procedures.h"
#include "driver/reconcile_phases.h"
#include "platform/database.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {

/// How a run ended. Errors that were logged on the way are counted in `Run::counts`.
enum class RunOutcome {
    Completed,   ///< the mode ran to its end
    NothingRan,  ///< start-up failed, or no mode was asked for
    Aborted,     ///< the Abort button was pressed
};

/// The text before the database file's path in the connection string.
constexpr std::string_view ConnectionPrefix = "Provider = Microsoft.Jet.OLEDB.4.0; Data Source=";

/// The connection string for a database file. The path stands in quotes only where it would else
/// end too early.
std::string LibraryConnectionString(std::string_view database);

/// The one window and the run behind it: start-up, choice of the mode, order of the phases.
class LibraryForm {
  public:
    /// `run` and `databases` must outlive the form. `version` is major.minor.revision.
    LibraryForm(Run& run, DatabaseProvider& databases, std::string_view version,
                Procedures procedures = AvailableProcedures());

    /// The whole run, from reading the settings to unloading the window. Called once.
    RunOutcome Form_Load();

    /// Asks the run to stop at its next test.
    void aAbort_Click() noexcept { run_.AbortRequested = true; }

  private:
    RunOutcome main();
    void RemoveOldCopies(RunOutcome outcome);
    RunOutcome UpdateDatabase(const Mode& mode);

    // Start-up.
    bool PluginIsEnabled();
    void RefuseMisspeltSettings();
    void RefuseHalfRestored();
    void HideIndicators();
    void ReadGenreNames();
    void Release();

    // The modes.
    bool SecureMode(const Mode& mode);
    ReconcileScope PrepareReconcile();
    void EmptyDifferences();
    void RunPhases(const ReconcileScope& scope);
    bool StartPhase(const ReconcilePhase& phase);
    void RunPhase(const ReconcilePhase& phase);

    // What both kinds of modes need.
    bool StartIndicator(std::size_t index);
    bool RequireOwnPlaces(const Mode& mode);
    bool MakeBackups(std::span<const BackedUp> originals);
    bool MakeBackup(const BackedUp& original, std::vector<std::string>& copies);
    void Perform(const Procedures::Work& work);
    RunOutcome Outcome() const;

    Run& run_;
    DatabaseProvider& databases_;
    std::string version_;
    Procedures procedures_;
    BackupKeeping keeping_;
    Steps updateSteps_;  ///< of `UpdateDatabase` and what it is made of
};

}  // namespace quillon
