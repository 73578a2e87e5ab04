#include "app/commands/check_command.h"

#include <filesystem>
#include <fmt/format.h>
#include <ostream>
#include <string>
#include <system_error>

#include "app/checks/backup_check.h"
#include "app/checks/database_check.h"
#include "app/checks/folders_check.h"
#include "app/checks/left_out_check.h"
#include "app/checks/mode_check.h"
#include "app/checks/modern_music_check.h"
#include "app/checks/moved_music_check.h"
#include "app/checks/safety_check.h"
#include "app/checks/settings_check.h"
#include "app/checks/tag_renames_check.h"
#include "app/checks/writable.h"
#include "app/local_host.h"
#include "app/removed_music.h"
#include "app/text/display_text.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

void TellDrives(const DriveTable& drives, std::ostream& out) {
    for (const auto& [root, folder] : drives.Roots()) {
        const fs::path local = folder.empty() ? "/" : folder;
        std::error_code ignored;
        out << fmt::format("Drive {:<10} {}{}\n", OneLine(root), OneLine(local.string()),
                           fs::is_directory(local, ignored) ? "" : "   is not there");
    }
}

void TellRemovedMusic(HostFolder& host, std::ostream& out, Findings& findings) {
    const RemovedMusicSetting setting = ReadRemovedMusicSetting(host);
    const std::string what =
        setting.keep ? "kept in " + OneLine(RemovedMusicFolder(host).string()) : "deleted for good";
    out << fmt::format("Removed music    {}\n", what);
    const bool byTitle =
        IsSwitchedOff(host.GetINISetting("Removed", "OnlyIdentical", "0", HostSettingsFile));
    out << fmt::format("Duplicates       {}\n",
                       byTitle ? "files with the same title (OnlyIdentical is off)"
                               : "only files with the same sound, byte for byte");
    if (!setting.understood) {
        findings.Caution(fmt::format(
            "Keep in [Removed] of host.ini is \"{}\", which is neither yes nor no; removed music "
            "is kept. Write 1 or 0",
            setting.text));
    }
}

void CheckLog(const HostFolder& host, std::ostream& out, Findings& findings) {
    const fs::path log = host.LogPath();
    std::error_code ignored;
    const bool exists = fs::exists(log, ignored);
    const bool isFile = !exists || fs::is_regular_file(log, ignored);
    const bool canWrite = isFile && IsWritable(exists ? log : log.parent_path());
    out << fmt::format("Log              {}{}\n", OneLine(log.string()),
                       !canWrite ? ", cannot be written"
                       : exists  ? ""
                                 : ", made by the first run");
    if (canWrite) return;
    findings.Problem(
        fmt::format("The log {} cannot be written{}, so nobody would learn what a run does. {}",
                    log.string(), isFile ? " by this account" : " because it is not a file",
                    isFile ? "Give it the right to" : "Remove what has its name"));
}

/// The last line: what all this comes to.
void TellVerdict(const Findings& findings, std::ostream& out) {
    const auto counted = [](std::size_t count, std::string_view what) {
        return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
    };
    if (!findings.problems.empty()) {
        out << fmt::format("\nNo run could do its work: {}.\n",
                           counted(findings.problems.size(), "problem"));
    } else if (!findings.cautions.empty()) {
        out << fmt::format("\nA run could start; {} first.\n",
                           counted(findings.cautions.size(), "thing") +
                               (findings.cautions.size() == 1 ? " is" : " are") + " worth a look");
    } else {
        out << "\nA run could start.\n";
    }
}

}  // namespace

int Check(const CheckRequest& request, Console console) {
    LocalHost local(request.host, [](LogKind, const std::string&) {});
    std::ostream& out = console.out;
    Findings findings;
    out << fmt::format("Host folder      {}\n", OneLine(local.host.Folder().string()));
    CheckPlugin(local.host, out, findings);
    CheckLog(local.host, out, findings);
    TellRemovedMusic(local.host, out, findings);
    CheckSafety(local.host, out, findings);
    CheckBackupKeeping(local.host, out, findings);
    CheckMovedMusic(local.host, out, findings);
    CheckModernMusic(local.host, out, findings);
    TellDrives(local.host.Drives(), out);
    const Settings settings = CheckSettings(local.host, out, findings);
    CheckUnreadKeys(local.host, settings, findings);
    CheckRepeatedKeys(local.host, findings);
    CheckNumbers(settings, findings);
    CheckHostSettings(local.host, out, findings);
    CheckFolders(local, settings, out, findings);
    CheckLibraryFolders(local.files, settings, findings);
    CheckOverlaps(local, settings, findings);
    CheckLeftOut(local.files, settings, ReadModernMusic(local.host), findings);
    CheckHalfRestored(local.files, settings, findings);
    CheckDatabase(local, settings, out, findings);
    CheckMode(local.resolver, settings, out, findings);
    CheckTagRenames(local, settings, findings);

    TellFindings(findings, out);
    TellVerdict(findings, out);
    return findings.problems.empty() ? DoneStatus : RefusedStatus;
}

}  // namespace quillon
