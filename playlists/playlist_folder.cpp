#include "playlists/playlist_folder.h"

#include <algorithm>
#include <array>
#include <memory>

#include "platform/basic_text.h"
#include "platform/database.h"
#include "platform/host.h"
#include "playlists/folder_remarks.h"
#include "playlists/list_likeness.h"
#include "playlists/pla_line.h"
#include "run/log.h"
#include "run/paths.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class FolderStep { TellRemark = 1, RecogniseList = 2 };

constexpr std::array<std::string_view, 3> OwnFiles{"quillon.ini", HostSettingsFile, "host.log"};

std::string NameIn(std::string_view path) {
    return std::string(path.substr(path.find_last_of("\\/") + 1));
}

/// Whether a file is the database or lies beside it under its name, as snapshots, lock files and
/// backups do. Names alone are compared: a folder has more than one path.
bool BelongsToDatabase(std::string_view name, std::string_view database) {
    const std::string file = LowerCase(name), own = LowerCase(NameIn(database));
    if (own.empty()) return false;
    return file == own || file.starts_with(own + '.') || file.starts_with(own + "_copy dated_") ||
           file == own.substr(0, own.rfind('.')) + ".ldb";
}

bool IsOwnFile(const Run& run, const FileEntry& file) {
    const std::string& database = run.settings.Nirvis_CDJ_DB;
    // A database without an extension must not take playlists of like names for its own.
    if (HasPlaylistName(file.name)) return EqualIgnoringCase(file.path, database);
    const auto isName = [&file](std::string_view own) { return EqualIgnoringCase(own, file.name); };
    return std::any_of(OwnFiles.begin(), OwnFiles.end(), isName) ||
           BelongsToDatabase(file.name, database);
}

Listing<FileEntry> AllFiles(Run& run) {
    return run.files.FilesIn(FolderPath(run.settings.PlayListPath));
}

void TellRemark(Run& run, const Listing<FileEntry>& files) {
    const std::string remark = PlaylistFolderRemark(run.files, run.settings, run.host.GetAppPath(),
                                                    run.LibraryFolders, files);
    if (!remark.empty()) WriteLog(run, LogSource, remark);
}

}  // namespace

bool PlaylistFolderExists(Run& run) {
    return run.files.FolderExists(FolderPath(run.settings.PlayListPath));
}

bool IsSameFolder(Files& files, std::string_view one, std::string_view other) {
    if (EqualIgnoringCase(one, other)) return true;
    return files.IsWithin(one, other) && files.IsWithin(other, one);
}

bool HasPlaylistName(std::string_view name) {
    return EqualIgnoringCase(Right(name, PlaExtension.size()), PlaExtension) &&
           !name.starts_with("._");
}

std::vector<FileEntry> FilesInPlaylistFolder(Run& run) {
    std::vector<FileEntry> files = AllFiles(run).entries;
    std::erase_if(files, [&run](const FileEntry& file) { return IsOwnFile(run, file); });
    return files;
}

bool MayMissAll(Run& run) {
    const std::string& folder = run.settings.PlayListPath;
    if (folder.empty()) return true;
    PlannedRemoval missing{.kind = Removable::Playlists,
                           .names = {},
                           .doubt = "no playlist at all was found in " + folder};
    for (const PlaylistRow& row : run.ThePlaylistTable().Rows()) {
        const std::string name = row.name.Text() + row.type.Text();
        if (EqualIgnoringCase(row.folder, folder) && HasPlaylistName(name))
            missing.names.push_back(folder + name);
    }
    return run.removals.Allow(run, missing);
}

PlaylistFolder ReadPlaylistFolder(Run& run, Steps& steps) {
    PlaylistFolder folder;
    const Listing<FileEntry> files = AllFiles(run);
    steps.Try(FolderStep::TellRemark, [&] { TellRemark(run, files); });
    for (const std::string& path : files.unseen)
        folder.unread.push_back(NameIn(path));
    for (const FileEntry& file : files) {
        if (IsOwnFile(run, file)) continue;
        bool isList = HasPlaylistName(file.name);
        steps.Concerning(file.path);
        const bool isKnown = isList || steps.Try(FolderStep::RecogniseList,
                                                 [&] { isList = ReadsAsPlaylist(run, file); });
        if (!isKnown) folder.unread.push_back(file.name);
        if (isList) folder.lists.push_back(file);
    }
    steps.Concerning({});
    return folder;
}

}  // namespace quillon
