#include "app/checks/folders_check.h"

#include <fmt/format.h>
#include <ostream>
#include <string>
#include <vector>

#include "app/display_text.h"
#include "driver/modes.h"
#include "platform/failure.h"
#include "run/paths.h"

namespace quillon {
namespace {

struct NamedFolder {
    std::string_view name;
    std::string path;
    bool indispensable = false;  ///< for the mode that would run
};

std::vector<NamedFolder> FoldersOf(const Settings& settings, std::string_view appPath) {
    const Mode* const mode = SelectMode(settings);
    const bool runs = mode != nullptr;
    const std::string app = AddBackslash(appPath);
    return {
        {"LibraryRoot", settings.LibraryRoot, runs && !settings.PlaylistsOnly},
        {"FromFilesPath", settings.FromFilesPath, runs && settings.AddFiles},
        {"PlayListPath", settings.PlayListPath},
        {"PlayListPath2", settings.PlayListPath2},
        {"AlbumCoverFolder", settings.AlbumCoverFolder},
        {"Data", app + "Data"},
        {"HTML", app + "HTML"},
    };
}

/// How a path stands; empty when it is a folder.
std::string Trouble(Files& files, const std::string& path) try {
    return files.FolderExists(path) ? "" : "is not there";
} catch (const Failure& failure) {
    return failure.what();
}

}  // namespace

void CheckFolders(Files& files, const Settings& settings, std::string_view appPath,
                  std::ostream& out, Findings& findings) {
    out << "\nFolders\n";
    for (const NamedFolder& folder : FoldersOf(settings, appPath)) {
        // An empty folder setting has become a lone backslash.
        const bool isSet = !folder.path.empty() && folder.path != "\\";
        const std::string trouble = isSet ? Trouble(files, folder.path) : "";
        out << fmt::format("  {:<22} {}   {}\n", folder.name,
                           isSet ? OneLine(folder.path) : "(empty)",
                           !isSet            ? ""
                           : trouble.empty() ? "there"
                                             : trouble);
        if (isSet && trouble.empty()) continue;
        const std::string finding =
            isSet ? fmt::format("Folder {} ({}): {}", folder.name, folder.path, trouble)
                  : fmt::format("Folder {} is not set", folder.name);
        if (folder.indispensable) {
            findings.Problem(finding);
        } else if (isSet) {
            findings.Caution(finding);
        }
    }
}

}  // namespace quillon
