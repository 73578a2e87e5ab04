#include "app/commands/check_command.h"

#include <fmt/format.h>
#include <ostream>
#include <string_view>
#include <vector>

#include "app/checks/database_check.h"
#include "app/checks/folders_check.h"
#include "app/checks/mode_check.h"
#include "app/checks/settings_check.h"
#include "app/display_text.h"
#include "app/local_host.h"
#include "app/removed_music.h"
#include "platform/failure.h"

namespace quillon {
namespace {

void TellDrives(const DriveTable& drives, std::ostream& out) {
    for (const auto& [root, folder] : drives.Roots()) {
        const std::filesystem::path local = folder.empty() ? "/" : folder;
        out << fmt::format("Drive {:<10} {}{}\n", OneLine(root), OneLine(local.string()),
                           std::filesystem::is_directory(local) ? "" : "   is not there");
    }
}

void TellRemovedMusic(HostFolder& host, std::ostream& out, Findings& findings) {
    const RemovedMusicSetting setting = ReadRemovedMusicSetting(host);
    const std::string what =
        setting.keep ? "kept in " + OneLine(RemovedMusicFolder(host).string()) : "deleted for good";
    out << fmt::format("Removed music    {}\n", what);
    if (!setting.understood) {
        findings.Caution(
            fmt::format("Keep in [Removed] of host.ini is \"{}\", which is neither yes nor no; "
                        "removed music is "
                        "kept",
                        setting.text));
    }
}

void TellDatabase(LocalHost& local, const Settings& settings, std::ostream& out,
                  Findings& findings) try {
    out << "\nDatabase\n";
    if (settings.Nirvis_CDJ_DB.empty())
        return findings.Problem("Setting Nirvis_CDJ_DB names no database");
    const std::string path = local.resolver.Local(settings.Nirvis_CDJ_DB);
    out << fmt::format("  {}   {}\n", OneLine(settings.Nirvis_CDJ_DB), OneLine(path));
    CheckDatabase(path, settings, out, findings);
} catch (const Failure& failure) {
    findings.Problem(fmt::format("The database {}: {}", settings.Nirvis_CDJ_DB, failure.what()));
}

void TellFindings(std::string_view title, const std::vector<std::string>& findings,
                  std::ostream& out) {
    if (findings.empty()) return;
    out << '\n' << title << '\n';
    for (const std::string& finding : findings)
        out << "  - " << OneLine(finding) << '\n';
}

}  // namespace

int Check(const CheckRequest& request, Console console) {
    LocalHost local(request.host, [](const std::string&) {});
    std::ostream& out = console.out;
    Findings findings;
    out << fmt::format("Host folder      {}\n", OneLine(local.host.Folder().string()));
    CheckPlugin(local.host, out, findings);
    TellDrives(local.host.Drives(), out);
    TellRemovedMusic(local.host, out, findings);
    const Settings settings = CheckSettings(local.host, out, findings);
    CheckHostSettings(local.host, out, findings);
    CheckFolders(local.files, settings, local.host.GetAppPath(), out, findings);
    TellDatabase(local, settings, out, findings);
    CheckMode(settings, out, findings);

    TellFindings("Problems", findings.problems, out);
    TellFindings("Worth a look", findings.cautions, out);
    const bool couldStart = findings.problems.empty();
    out << (couldStart ? "\nA run could start.\n" : "\nNo run could do its work.\n");
    return couldStart ? DoneStatus : RefusedStatus;
}

}  // namespace quillon
