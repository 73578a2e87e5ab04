#include "app/checks/mode_check.h"

#include <fmt/format.h>
#include <ostream>
#include <string>

#include "app/display_text.h"
#include "driver/modes.h"
#include "driver/reconcile_phases.h"

namespace quillon {
namespace {

std::string BackupsText(const BackupPlan& plan, const Settings& settings) {
    std::string text;
    const auto add = [&text](bool wanted, std::string_view path) {
        if (wanted && !path.empty() && path != "\\")
            text += (text.empty() ? "" : ", ") + OneLine(path);
    };
    add(plan.database, settings.Nirvis_CDJ_DB);
    add(plan.playListPath, settings.PlayListPath);
    add(plan.playListPath2, settings.PlayListPath2);
    return text.empty() ? "none" : text;
}

void TellPhases(const Settings& settings, std::ostream& out) {
    const ReconcileScope scope{
        .libraryPresent = !settings.LibraryRoot.empty() && !settings.PlaylistsOnly,
        .playlistsOnly = settings.PlaylistsOnly,
        .id3Reconcile = settings.ID3Reconcile && !settings.PlaylistsOnly,
        .reconcileOption = settings.ReconcileOption};
    out << "  Phases\n";
    for (const ReconcilePhase& phase : ReconcilePhases()) {
        if (phase.applies(scope) && phase.work != nullptr)
            out << fmt::format("    {}\n", phase.what);
    }
}

}  // namespace

void CheckMode(const Settings& settings, std::ostream& out, Findings& findings) {
    out << "\nA run would do\n";
    const Mode* const mode = SelectMode(settings);
    if (mode == nullptr) {
        out << "  nothing\n";
        findings.Problem("No mode is chosen: set Reconcile=1, for instance");
        return;
    }
    out << fmt::format("  {}{}\n", mode->what, settings.PlaylistsOnly ? ", playlists only" : "");
    out << fmt::format("  Backups first: {}\n", BackupsText(mode->backups, settings));
    if (mode->work == nullptr) TellPhases(settings, out);
}

}  // namespace quillon
