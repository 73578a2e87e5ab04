#include "app/checks/folders_check.h"

#include <fmt/format.h>
#include <ostream>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "app/checks/writable.h"
#include "app/table_printer.h"
#include "driver/library_folders.h"
#include "driver/modes.h"
#include "platform/failure.h"
#include "playlists/folder_remarks.h"
#include "run/modern_music.h"
#include "run/paths.h"

namespace quillon {
namespace {

struct NamedFolder {
    std::string_view name;
    std::string path;
    FolderUse use;
    bool isMade = false;  ///< when it is not there
    std::string_view writes = "and the run writes there";
};

enum class Standing { NotSet, NoPath, Missing, NoFolder, Unreadable, WriteProtected, There };

/// A reconciliation writes into the cover folder only what it finds in the tags of songs.
NamedFolder CoverFolder(const Settings& settings, const ModernMusic& modern) {
    NamedFolder covers{"AlbumCoverFolder", settings.AlbumCoverFolder,
                       UseOf(RunFolder::AlbumCoverFolder, settings)};
    if (modern.takesFolderImages && WalksLibrary(settings)) {
        covers.use.isWritten = true;
        covers.writes =
            "so the pictures in songs, which FolderImages in [Covers] of host.ini asks "
            "for, become no covers";
    }
    return covers;
}

std::vector<NamedFolder> FoldersOf(const Settings& settings, const ModernMusic& modern,
                                   const std::string& appPath) {
    const auto use = [&settings](RunFolder folder) { return UseOf(folder, settings); };
    const std::string app = AddBackslash(appPath);
    return {
        {"LibraryRoot", settings.LibraryRoot, use(RunFolder::LibraryRoot)},
        {"FromFilesPath", settings.FromFilesPath, use(RunFolder::FromFilesPath)},
        {"PlayListPath", settings.PlayListPath, use(RunFolder::PlayListPath)},
        {"PlayListPath2", settings.PlayListPath2, use(RunFolder::PlayListPath2)},
        CoverFolder(settings, modern),
        {"Data", app + "Data", use(RunFolder::Data), true},
        {"HTML", app + "HTML", use(RunFolder::Html), true},
    };
}

Standing StandingOf(PathResolver& resolver, const NamedFolder& folder) try {
    if (!NamesFolder(folder.path)) return Standing::NotSet;
    const std::filesystem::path local = resolver.Local(folder.path);
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(local, error);
    if (!std::filesystem::exists(status)) return Standing::Missing;
    if (!std::filesystem::is_directory(status)) return Standing::NoFolder;
    const std::filesystem::directory_iterator entries(local, error);
    if (error) return Standing::Unreadable;
    return IsWritable(local) ? Standing::There : Standing::WriteProtected;
} catch (const Failure& failure) {
    const bool isNoPath = failure.Number() == FailureNumber::BadFileName ||
                          failure.Number() == FailureNumber::PathNotFound;
    return isNoPath ? Standing::NoPath : Standing::Unreadable;
}

std::string_view StandingText(Standing standing, bool isMade) {
    switch (standing) {
        case Standing::NotSet:
            return "not set";
        case Standing::NoPath:
            return "no drive";
        case Standing::Missing:
            return isMade ? "made when needed" : "not there";
        case Standing::NoFolder:
            return "no folder";
        case Standing::Unreadable:
            return "unreadable";
        case Standing::WriteProtected:
            return "read-only";
        case Standing::There:
            break;
    }
    return "there";
}

/// What is wrong with a folder that the mode uses, and what to do; "" when nothing is.
std::string Objection(const NamedFolder& folder, Standing standing) {
    const std::string name = fmt::format("Folder {} ({})", folder.name, folder.path);
    switch (standing) {
        case Standing::NotSet:
            if (folder.use.isEssential)
                return fmt::format("Folder {} is not set, and the run needs it", folder.name);
            if (folder.name == "PlayListPath")
                return "Folder PlayListPath is not set: no playlist can be kept or made";
            return "";
        case Standing::NoPath:
            return name +
                   " is not on a drive that [Drives] in host.ini maps. Correct the path or the "
                   "drive";
        case Standing::Missing:
            if (folder.isMade) return "";
            return name + " is not there. Make it, mount it or correct the path";
        case Standing::NoFolder:
            return name + " is not a folder";
        case Standing::Unreadable:
            return name + " cannot be read by this account. Give it the right to read there";
        case Standing::WriteProtected:
            if (!folder.use.isWritten) return "";
            return fmt::format(
                "{} cannot be written by this account, {}. Give it the right to write there", name,
                folder.writes);
        case Standing::There:
            break;
    }
    return "";
}

/// False where it cannot be told; the table of folders shows which one cannot be looked at.
bool IsWithin(Files& files, const std::string& folder, const std::string& outer) try {
    return files.IsWithin(folder, outer);
} catch (const Failure&) {
    return false;
}

void CheckSource(Files& files, const Settings& settings, Findings& findings) {
    const std::string& source = settings.FromFilesPath;
    const std::string& root = settings.LibraryRoot;
    const bool isInside = IsWithin(files, source, root);
    const bool isAround = IsWithin(files, root, source);
    if (!isInside && !isAround) return;
    const std::string_view how = isInside && isAround ? "is the library itself"
                                 : isInside           ? "lies in the library"
                                                      : "holds the library";
    findings.Add(UseOf(RunFolder::FromFilesPath, settings).IsAny(),
                 fmt::format("FromFilesPath ({}) {} ({}): AddFiles would copy the library into "
                             "itself and therefore does nothing. Name another folder",
                             source, how, root));
}

/// What else the playlist folder is; "" where that cannot be told, which the table of folders
/// shows.
std::string PlaylistRemark(LocalHost& local, const Settings& settings) try {
    const std::string& folder = settings.PlayListPath;
    if (!NamesFolder(folder) || !local.files.FolderExists(folder)) return "";
    return PlaylistFolderRemark(local.files, settings, local.host.GetAppPath(),
                                BuildLibraryFolders(local.files, settings),
                                local.files.FilesIn(folder));
} catch (const Failure&) {
    return "";
}

void CheckPlaylistFolder(LocalHost& local, const Settings& settings, Findings& findings) {
    const bool isUsed = UseOf(RunFolder::PlayListPath, settings).IsAny();
    std::string remark = isUsed ? PlaylistRemark(local, settings) : "";
    if (!remark.empty()) findings.Caution(std::move(remark));
}

}  // namespace

void CheckFolders(LocalHost& local, const Settings& settings, std::ostream& out,
                  Findings& findings) {
    out << "\nFolders\n";
    TablePrinter table(out, {"Folder", "State", "Path"}, {.indent = 2, .countsRows = false});
    for (const NamedFolder& folder :
         FoldersOf(settings, ReadModernMusic(local.host), local.host.GetAppPath())) {
        const Standing standing = StandingOf(local.resolver, folder);
        table.AddRow({{std::string(folder.name)},
                      {std::string(StandingText(standing, folder.isMade))},
                      {NamesFolder(folder.path) ? folder.path : "(empty)"}});
        if (!folder.use.IsAny()) continue;
        std::string objection = Objection(folder, standing);
        if (!objection.empty()) findings.Add(folder.use.isEssential, std::move(objection));
    }
    table.Finish();
}

void CheckLibraryFolders(Files& files, const Settings& settings, Findings& findings) try {
    const std::string& root = settings.LibraryRoot;
    if (!settings.LibraryDepthOption || !files.FolderExists(root)) return;
    if (!BuildLibraryFolders(files, settings).empty()) return;
    findings.Add(
        WalksLibrary(settings),
        fmt::format("LibraryDepthOption is on, and LibraryRoot ({}) holds neither a folder "
                    "nor a .txt file that names one: there is no library to look at. "
                    "Switch it off, or name the folder above",
                    root));
} catch (const Failure& failure) {
    findings.Problem(
        fmt::format("The library folders cannot be determined, and no run starts without them: {}. "
                    "Give this account the right to read there",
                    failure.what()));
}

void CheckOverlaps(LocalHost& local, const Settings& settings, Findings& findings) {
    CheckSource(local.files, settings, findings);
    CheckPlaylistFolder(local, settings, findings);
    if (!IsWithin(local.files, settings.PlayListPath2, settings.LibraryRoot)) return;
    findings.Caution(
        fmt::format("PlayListPath2 ({}) lies in the library ({}), where its backups would look "
                    "like artists. Name a folder outside of it",
                    settings.PlayListPath2, settings.LibraryRoot));
}

}  // namespace quillon
