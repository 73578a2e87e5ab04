#include "app/commands/run_command.h"

#include <chrono>
#include <memory>
#include <string>
#include <unistd.h>

#include "app/local_host.h"
#include "app/removed_music.h"
#include "app/signals.h"
#include "app/version.h"
#include "app/views/line_output.h"
#include "app/views/make_view.h"
#include "app/views/run_summary.h"
#include "driver/library_form.h"
#include "run/log.h"
#include "run/run.h"

namespace quillon {

int RunLibrary(const RunRequest& request) {
    const auto start = std::chrono::steady_clock::now();
    Run* current = nullptr;
    LocalHost local(request.host, [&current](LogKind kind, const std::string& message) {
        if (current == nullptr) return;
        if (kind == LogKind::Error) return LogError(*current, LogSource, message);
        WriteLog(*current, LogSource, message);
    });
    // Before the view, which would otherwise leave signals to the terminal library.
    const AbortSignals signals;
    const std::unique_ptr<View> view = MakeView(request.view, request.quiet);
    Run run(local.host, local.files, local.clock, *view);
    current = &run;
    run.removals.allAllowed = request.allowRemovals;
    RemovedFiles removed(RemovedMusicFolder(local.host), local.clock);
    removed.RemoveUnfinished();
    // Asked for now: a failure after the run would look as if nothing had run.
    const bool keepsRemoved = ReadRemovedMusicSetting(local.host).keep;
    if (keepsRemoved) local.files.OnDelete(KeepRemovedMusic(run, local.host, removed));
    local.files.ClearUnfinished();

    LibraryForm form(run, local.databases, ProgramVersion);
    const RunOutcome outcome = form.Form_Load();
    const RunReport report = run.Report();
    const RunSummary summary{
        outcome,
        report.counts,
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start),
        report.gone,
        report.saved,
        report.braked,
        keepsRemoved};
    view->Summarize(summary);
    LineOutput errors(STDERR_FILENO);
    for (const std::string& line : LostRecordsLines(run.lostRecords, run.counts))
        errors.WriteLine(line);
    errors.Finish();
    return ExitStatus(summary);
}

}  // namespace quillon
