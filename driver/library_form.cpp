#include "driver/library_form.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "driver/library_folders.h"
#include "driver/misspelt_setting.h"
#include "driver/phase_captions.h"
#include "driver/settings_reader.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "run/connection_value.h"
#include "run/excluded_artists.h"
#include "run/log.h"

namespace quillon {
namespace {

constexpr std::string_view PluginName = "Quillon";
constexpr std::string_view PluginMissing =
    "Quillon must be enabled to perform management activities";

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
    steps.Try(0, [&] {
        run_.form.lblver = "Version " + version_;
        run_.settings = ReadSettings(run_.host);
        run_.removals.limits = ReadSafetyLimits(run_.host);
        run_.movedMusic = ReadMovedMusicSettings(run_.host);
        run_.LibraryFolders = BuildLibraryFolders(run_.files, run_.settings);
        if (!PluginIsEnabled()) {
            WriteLog(run_, LogSource, PluginMissing);
            return;
        }
        RefuseMisspeltSettings();
        HideIndicators();
        ReadExcludeList(run_);
        run_.window.Show(run_.form);
        outcome = main();
    });
    Release();
    return outcome;
}

RunOutcome LibraryForm::main() {
    RunOutcome outcome = RunOutcome::NothingRan;
    Steps steps(run_, "QuillonShelfkeeper Main");
    steps.Try(0, [&] {
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
    steps.Try(0, [&] {
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

void LibraryForm::Release() {
    run_.LibraryFolders.clear();
    run_.window.Unload();
}

}  // namespace quillon
