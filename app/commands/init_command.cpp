#include "app/commands/init_command.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <fstream>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "app/local_drives.h"
#include "app/settings_file.h"
#include "app/stored_music.h"
#include "backups/kept_backups.h"
#include "jet/database.h"
#include "jukebox/jukebox_database.h"
#include "platform/basic_text.h"
#include "platform/host.h"
#include "platform/portable/local_file.h"
#include "run/removals.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view SettingsName = "Quillon.ini", HostName = HostSettingsFile,
                           LogName = "host.log", DatabaseName = "jukebox.mdb";
constexpr std::array<std::string_view, 5> HostFolders{"Playlists", "M3u", "Covers", "Data", "HTML"};
constexpr char HostDrive = 'H', MusicDrive = 'D', DatabaseDrive = 'J';
constexpr std::string_view DiskDrive = "Z:";

/// All paths of the host folder to be made, absolute.
struct Plan {
    fs::path host, music, database;
    bool makesDatabase = false;
    LibraryLayout layout = LibraryLayout::Tree;
    DriveTable drives;
    std::string libraryRoot, databasePath;  ///< Windows paths of music and database

    /// Where an existing database has the music, if no drive can make that the music folder.
    std::optional<std::string> unreachableMusic;
};

std::string WindowsPathIn(const DriveTable& drives, const fs::path& path) {
    if (auto windowsPath = drives.WindowsPathOf(path)) return *windowsPath;
    throw CommandError(fmt::format(
        "a name in {} is not possible on Windows, so the database cannot refer to what is there",
        path.string()));
}

/// Where paths have drives of their own, none is needed but for a database that knows the music by
/// another.
void UseOwnDrives(Plan& plan, const std::optional<std::string>& stored) {
    plan.libraryRoot = WindowsPathIn(plan.drives, plan.music);
    plan.databasePath = WindowsPathIn(plan.drives, plan.database);
    if (!stored || EqualIgnoringCase(*stored, plan.libraryRoot)) return;
    if (MapPath(plan.drives, *stored, plan.music)) {
        plan.libraryRoot = *stored;
    } else {
        plan.unreachableMusic = stored;
    }
}

/// The music first: its paths are those that the database keeps.
void AddDrives(Plan& plan) {
    std::optional<std::string> stored;
    if (!plan.makesDatabase) {
        jet::Database database = jet::Database::Open(plan.database, jet::OpenMode::ReadOnly);
        stored = StoredMusicFolder(database, plan.music);
    }
    if (SpeaksWindowsPaths()) return UseOwnDrives(plan, stored);
    // The drive is the folder around the music: paths such as D:\Music\... are what every program
    // that shares the database is used to.
    if (stored && MapPath(plan.drives, *stored, plan.music)) {
        plan.libraryRoot = *stored;
    } else {
        plan.drives.Map(FreeDrive(plan.drives, MusicDrive), plan.music.parent_path());
        plan.libraryRoot = WindowsPathIn(plan.drives, plan.music);
        plan.unreachableMusic = stored;
    }
    plan.drives.Map(FreeDrive(plan.drives, HostDrive), plan.host);
    // The whole disk is within reach of drive Z:, but that is for emergencies.
    if (plan.drives.LocalFolder(DiskDrive) == "" &&
        WindowsPathIn(plan.drives, plan.database).starts_with(DiskDrive))
        plan.drives.Map(FreeDrive(plan.drives, DatabaseDrive), plan.database.parent_path());
    plan.databasePath = WindowsPathIn(plan.drives, plan.database);
}

Plan MakePlan(const InitRequest& request) {
    Plan plan{.host = AbsolutePath(request.host),
              .music = AbsolutePath(request.music),
              .database = {},
              .makesDatabase = !request.database.has_value(),
              .layout = request.layout,
              .drives = DriveTable(AbsolutePath(request.host)),
              .libraryRoot = {},
              .databasePath = {},
              .unreachableMusic = {}};
    plan.database = plan.makesDatabase ? plan.host / DatabaseName : AbsolutePath(*request.database);
    if (!fs::is_directory(plan.music))
        throw CommandError(fmt::format("the music folder {} does not exist", plan.music.string()));
    if (!plan.music.has_filename())
        throw CommandError("the root folder cannot be the music folder");
    if (!plan.makesDatabase && !fs::is_regular_file(plan.database))
        throw CommandError(fmt::format("the database {} does not exist", plan.database.string()));

    AddDrives(plan);
    return plan;
}

/// What must not be there, because it would be written.
void RefuseToOverwrite(const Plan& plan) {
    std::vector<std::string_view> files{SettingsName, HostName, LogName};
    if (plan.makesDatabase) files.push_back(DatabaseName);
    std::string existing;
    const auto note = [&existing](const fs::path& path) {
        existing += (existing.empty() ? "" : ", ") + path.string();
    };
    if (fs::exists(plan.host) && !fs::is_directory(plan.host)) note(plan.host);
    for (const std::string_view file : files)
        if (fs::symlink_status(plan.host / file).type() != fs::file_type::not_found)
            note(plan.host / file);
    for (const std::string_view folder : HostFolders)
        if (fs::exists(plan.host / folder) && !fs::is_directory(plan.host / folder))
            note(plan.host / folder);
    if (!existing.empty())
        throw CommandError("nothing is overwritten, and this exists already: " + existing);
}

/// A value that can be read back unchanged from an INI file: blanks at the ends and quotes around
/// it would be lost.
std::string IniValue(const std::string& value) {
    if (value.find_first_of("\r\n") != std::string::npos)
        throw CommandError(
            fmt::format("a path with a line break cannot be written to the settings: {}", value));
    const bool plain = value.empty() || (value.front() != ' ' && value.back() != ' ' &&
                                         value.front() != '"' && value.front() != '\'');
    return plain ? value : '"' + value + '"';
}

std::string SettingsText(const Plan& plan) {
    const auto inHost = [&plan](std::string_view folder) {
        return IniValue(WindowsPathIn(plan.drives, plan.host / folder) + '\\');
    };
    return SettingsFileText({{"Reconcile", "1"},
                             {"LibraryRoot", IniValue(plan.libraryRoot)},
                             {"FlatStructure", plan.layout == LibraryLayout::Flat ? "1" : "0"},
                             {"Nirvis_CDJ_DB", IniValue(plan.databasePath)},
                             // It renames and removes files, which must not happen unasked.
                             {"ID3Reconcile", "0"},
                             {"PlayListPath", inHost("Playlists")},
                             {"PlayListPath2", inHost("M3u")},
                             {"AlbumCoverFolder", inHost("Covers")}});
}

/// The values are those that hold without these lines.
std::string SafetyText() {
    const SafetyLimits limits;
    return fmt::format(
        "\n"
        "; The brake: a run that would remove more than this removes nothing, says so and ends "
        "with "
        "status\n"
        "; 1. A drive that is not mounted looks like a library that somebody has emptied. So the "
        "brake also\n"
        "; holds where a library folder has no music at all. 'quillon run --allow-removals' lets "
        "it through\n"
        "; once, Brake=0 always.\n"
        "[Safety]\n"
        "Brake={}\n"
        "\n"
        "; Rows of tracks: both must be passed, the number and the percentage of all.\n"
        "MaxRemovedTracks={}\n"
        "MaxRemovedPercent={}\n"
        "\n"
        "; Music files that are taken for duplicates, and playlists.\n"
        "MaxRemovedFiles={}\n"
        "MaxRemovedPlaylists={}\n",
        limits.Brake ? 1 : 0, limits.MaxRemovedTracks, limits.MaxRemovedPercent,
        limits.MaxRemovedFiles, limits.MaxRemovedPlaylists);
}

std::string HostText(const Plan& plan) {
    std::string text =
        "; What stands in for the home-automation host.\n"
        "\n"
        "; Plug-ins that are switched on; without Quillon no run starts.\n"
        "[Plugins]\n"
        "Quillon=1\n"
        "\n"
        "; Local folders behind Windows paths: a drive letter or \\\\server\\share on the left, on "
        "the\n"
        "; right a folder, absolute or relative to the folder of this file. The database keeps "
        "the\n"
        "; Windows paths, so other programs that use it need the same letters.\n"
        "[Drives]\n";
    for (const auto& [root, folder] : plan.drives.Roots()) {
        if (root == DiskDrive && folder.empty()) continue;
        const bool isLetter = root.ends_with(':');
        text += fmt::format("{}={}\n", isLetter ? root.substr(0, 1) : root,
                            folder == plan.host ? "." : IniValue(folder.empty() ? "/" : folder));
    }
    text +=
        "\n"
        "; The machine that the stream links of the download table name. Genres are read off such\n"
        "; links between hyphens, so the name should have none.\n"
        "[Download]\n"
        "Host=localhost\n"
        "\n"
        "; ScanLibrary=1: cover images may lie in the album folders, too; those in folders named "
        "as\n"
        "; ReservedFolder says are left out.\n"
        "; FolderImages=1: an album without a cover of its name gets the cover.jpg, folder.jpg, "
        "front.jpg or\n"
        "; AlbumArt.jpg in its folder (.jpeg and .png, too), or else the picture in one of its "
        "songs.\n"
        "[Covers]\n"
        "ScanLibrary=0\n"
        "ReservedFolder=\n"
        "FolderImages=1\n"
        "\n"
        "; 1: music files that a run removes from the library as duplicates are moved to the "
        "folder\n"
        "; Removed beside this file. 0: they are deleted.\n"
        "; OnlyIdentical=1: the comparison of tags takes a file for a duplicate only where the "
        "sound in it\n"
        "; is the other's, byte for byte. 0: the same title in their tags will do, of which tags "
        "hold the\n"
        "; first 30 letters.\n"
        "[Removed]\n"
        "Keep=1\n"
        "OnlyIdentical=1\n"
        "\n"
        "; Each run copies the database and the playlists before it changes them. So many of these "
        "backups\n"
        "; stay, and of older ones the last of each month, for a year; what has not changed is not "
        "copied\n"
        "; again. Without a number each run makes copies, and all of them stay. 'quillon backups' "
        "lists\n"
        "; them, 'quillon restore' puts one back.\n" +
        fmt::format("[{}]\n{}={}\n", BackupsSection, BackupsKeepKey, BackupKeeping::Usual) +
        "\n"
        "; 1: a song whose file was moved or renamed keeps its row, with play counts, ratings and "
        "places in\n"
        "; playlists. It is recognised by its sound. 0: it is removed, and added anew.\n"
        "; Numbers=tags: songs have the numbers of their tags, or else of the beginnings of their "
        "names. times:\n"
        "; they are numbered by the times of their files, oldest first, which a copy may lose.\n"
        "; Discs=1: folders such as CD1 or Disc 2 in an album's folder belong to that album. 0: "
        "they "
        "are left out.\n"
        "; TrackArtists=1: in an album whose tags name several artists each song has its own. 0: "
        "all have the\n"
        "; one that the artist's folder names.\n"
        "[Library]\n"
        "FollowMovedFiles=1\n"
        "Numbers=tags\n"
        "Discs=1\n"
        "TrackArtists=1\n"
        "\n"
        "; For how many days a song whose file is gone keeps its row. If the file comes back "
        "within them, all\n"
        "; is as before. 0: the row is removed at once.\n"
        "[Missing]\n"
        "KeepDays=14\n"
        "\n"
        "; 1: beside each .m3u list stands an .m3u8 with the paths of this machine, which players "
        "here open as\n"
        "; it is.\n"
        "[Playlists]\n"
        "Local=1\n"
        "\n"
        "; modern: the album picker's pages have large covers, a search field, genres and new "
        "albums. "
        "classic:\n"
        "; they are plain tables.\n"
        "[Picker]\n"
        "Style=modern\n"
        "\n"
        "; Read=best: titles, artists, genres and so on are those of ID3v2, in full, where a file "
        "has them, and\n"
        "; lengths come from the sound. Read=v1: the 128 bytes at a file's end are all that is "
        "read, with 30\n"
        "; letters for a title and no length. Write=both: the mode ID3Write corrects ID3v2, too, "
        "where a file\n"
        "; has it. Write=v1: those 128 bytes alone.\n"
        "[Tags]\n"
        "Read=best\n"
        "Write=both\n";
    return text + SafetyText();
}

/// What has been made so far; removed again unless it is kept.
class MadePaths {
  public:
    MadePaths() = default;
    ~MadePaths() {
        std::error_code ignored;
        for (auto path = paths_.rbegin(); path != paths_.rend(); ++path)
            fs::remove(*path, ignored);
    }
    MadePaths(const MadePaths&) = delete;
    MadePaths& operator=(const MadePaths&) = delete;

    void MakeFolder(const fs::path& folder) {
        if (fs::is_directory(folder)) return;
        if (folder.has_parent_path()) MakeFolder(folder.parent_path());
        fs::create_directory(folder);
        paths_.push_back(folder);
    }

    void WriteFile(const fs::path& file, const std::string& text) {
        std::ofstream out(file, std::ios::binary);
        paths_.push_back(file);
        out << text;
        out.close();
        if (!out) throw CommandError(fmt::format("{} cannot be written", file.string()));
    }

    void MakeDatabase(const fs::path& file) {
        CreateJukeboxDatabase(file);
        paths_.push_back(file);
    }

    void Keep() { paths_.clear(); }

  private:
    std::vector<fs::path> paths_;
};

std::string ShellWord(const std::string& text) {
    const auto isPlain = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               std::string_view("/._-+,:@%").find(c) != std::string_view::npos;
    };
    if (std::ranges::all_of(text, isPlain)) return text;
    if (SpeaksWindowsPaths()) return text.find(' ') == std::string::npos ? text : '"' + text + '"';
    std::string word = "'";
    for (const char c : text)
        word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return word + '\'';
}

void Tell(const Plan& plan, std::ostream& out) {
    const auto line = [&out](std::string_view what, const fs::path& path,
                             std::string_view windowsPath, std::string_view remark) {
        out << fmt::format("  {:<9} {}  ({}{})\n", what, path.string(), windowsPath, remark);
    };
    const std::string host = ShellWord(plan.host.string());
    out << fmt::format("Made the host folder {}\n", plan.host.string());
    line("music", plan.music, plan.libraryRoot, "");
    line("database", plan.database, plan.databasePath, plan.makesDatabase ? ", new" : "");
    if (plan.unreachableMusic)
        out << fmt::format(
            "\nCaution: the database has its tracks in {}. A reconciliation would remove them and "
            "add\nthose in {} as new. To keep them, give the music folder the same name and "
            "make\nthe host folder again.\n",
            *plan.unreachableMusic, plan.libraryRoot);
    out << fmt::format("\nNext:\n  quillon check --host {}\n  quillon run --host {}\n", host, host);
}

}  // namespace

int Init(const InitRequest& request, Console console) {
    const Plan plan = MakePlan(request);
    RefuseToOverwrite(plan);
    const std::string settings = SettingsText(plan), host = HostText(plan);

    MadePaths made;
    made.MakeFolder(plan.host);
    for (const std::string_view folder : HostFolders)
        made.MakeFolder(plan.host / folder);
    if (plan.makesDatabase) made.MakeDatabase(plan.database);
    made.WriteFile(plan.host / HostName, host);
    // Last, since a folder with settings counts as complete.
    made.WriteFile(plan.host / SettingsName, settings);
    made.Keep();
    Tell(plan, console.out);
    return DoneStatus;
}

}  // namespace quillon
