#include "app/checks/mode_check.h"

#include <fmt/format.h>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "app/checks/backup_check.h"
#include "driver/modes.h"
#include "driver/reconcile_phases.h"
#include "driver/settings_reader.h"
#include "run/paths.h"

namespace quillon {
namespace {

std::string KeyOf(const Mode& mode) {
    for (const SettingDefinition& definition : SettingDefinitions()) {
        const auto* const member = std::get_if<bool Settings::*>(&definition.member);
        if (member != nullptr && *member == mode.setting) return std::string(definition.key);
    }
    return "";
}

/// The keys of the modes that are switched on and meet the condition, as "A, B".
template <typename Condition>
std::string KeysOfModes(const Settings& settings, Condition condition) {
    std::string keys;
    for (const Mode& mode : Modes()) {
        if (mode.IsOn(settings) && condition(mode))
            keys += (keys.empty() ? "" : ", ") + KeyOf(mode);
    }
    return keys;
}

void TellPhases(const Settings& settings, std::ostream& out) {
    const ReconcileScope scope{
        .libraryPresent = !settings.LibraryRoot.empty() && !settings.PlaylistsOnly,
        .playlistsOnly = settings.PlaylistsOnly,
        .id3Reconcile = settings.ID3Reconcile && !settings.PlaylistsOnly,
        .reconcileOption = settings.ReconcileOption};
    for (const ReconcilePhase& phase : ReconcilePhases()) {
        if (phase.applies(scope) && phase.work != nullptr)
            out << fmt::format("    {}\n", phase.what);
    }
}

/// The remote reference takes drives from the folders' settings, whether they are there or not.
void CheckDrives(const Settings& settings, Findings& findings) {
    std::size_t missing = 0;
    for (const auto& [name, path] : {std::pair("AlbumCoverFolder", &settings.AlbumCoverFolder),
                                     std::pair("LibraryRoot", &settings.LibraryRoot),
                                     std::pair("PlayListPath", &settings.PlayListPath),
                                     std::pair("PlayListPath2", &settings.PlayListPath2)}) {
        if (!GetDrive(*path).empty()) continue;
        ++missing;
        findings.Caution(fmt::format(
            "{}={} names no drive, so the paths that follow it stay as they are. A drive ends with "
            "a backslash: D:\\ or \\\\server\\share\\",
            name, *path));
    }
    if (missing == 4) findings.Problem("No folder names a drive: MakeRemote would change nothing");
}

}  // namespace

void CheckMode(PathResolver& resolver, const Settings& settings, std::ostream& out,
               Findings& findings) {
    out << "\nA run would do\n";
    const Mode* const mode = SelectMode(settings);
    const std::string needing =
        KeysOfModes(settings, [&](const Mode& other) { return !other.Applies(settings); });
    if (!needing.empty()) {
        findings.Add(mode == nullptr,
                     fmt::format("{} needs LibraryRoot, which is empty, and is skipped. Set "
                                 "LibraryRoot to the folder of the music",
                                 needing));
    }
    if (mode == nullptr) {
        out << "  nothing\n";
        if (needing.empty())
            findings.Problem(
                "No mode is chosen, so a run does nothing. Set Reconcile=1, for example");
        return;
    }
    out << fmt::format(
        "  {}{}\n", mode->what,
        mode->IsReconciliation() && settings.PlaylistsOnly ? ", playlists only" : "");
    if (mode->IsReconciliation()) TellPhases(settings, out);
    CheckBackups(resolver, mode->backups, settings, out, findings);

    const std::string others = KeysOfModes(settings, [&](const Mode& other) {
        return other.Applies(settings) && other.setting != mode->setting;
    });
    if (!others.empty()) {
        findings.Caution(
            fmt::format("Several modes are switched on. A run does one thing: {}; {} "
                        "will not run. Switch off what is not wanted",
                        KeyOf(*mode), others));
    }
    if (mode->isReserved)
        findings.Caution(fmt::format(
            "{} is reserved: the run backs up the playlists and converts nothing", KeyOf(*mode)));
    if (mode->needsDrives) CheckDrives(settings, findings);
}

}  // namespace quillon
