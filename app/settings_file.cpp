#include "app/settings_file.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

#include "driver/settings_reader.h"

namespace quillon {
namespace {

constexpr std::array WhatToRun{
    SettingExplanation{"Reconcile",
                       "Bring database, playlists and download table in line with the "
                       "music folder."},
    SettingExplanation{"PlaylistsOnly",
                       "A reconciliation of the playlists alone; switches Reconcile on."},
    SettingExplanation{"ID3Update", "Update the database from the tags of the files."},
    SettingExplanation{"AddFiles", "Copy the files below FromFilesPath into the library."},
    SettingExplanation{"ID3Write",
                       "Write the database's titles, artists and albums into the "
                       "tags of the files."},
    SettingExplanation{"AlbumPicker", "Make the album picker's web pages."},
    SettingExplanation{"PlaToM3u", "Convert the .pla playlists to .m3u."},
    SettingExplanation{"MakeRemote", "Rewrite stored paths for use from another machine."},
    SettingExplanation{"M3uToPla", "Reserved; copies the playlist folder and converts nothing."},
};

constexpr std::array LibraryFiles{
    SettingExplanation{"LibraryRoot",
                       "Root folder of the music. If empty, nothing that needs the music runs."},
    SettingExplanation{"FlatStructure",
                       "0: artist folders that hold album folders. 1: files named "
                       "Artist_Song.mp3 side by side."},
    SettingExplanation{"LibraryDepthOption",
                       "1: the music lies below each folder in LibraryRoot, and below the folders "
                       "that .txt files in it name, one a line."},
    SettingExplanation{"ExcludeList",
                       "Artist folders to leave out, separated by commas without "
                       "blanks."},
    SettingExplanation{"FromFilesPath", "Where AddFiles takes new files from."},
    SettingExplanation{"Nirvis_CDJ_DB", "The jukebox database file."},
};

constexpr std::array Tags{
    SettingExplanation{"ID3Reconcile",
                       "Compare the tags with names and database in a reconciliation. Files whose "
                       "tag has another title are renamed to Artist - Title.mp3, or removed where "
                       "such a file exists."},
    SettingExplanation{"ReconcileOption",
                       "Write the differences into a file at the end of a reconciliation."},
    SettingExplanation{"ID3ActionOption",
                       "How tags are handled. Kept for other programs that read this file."},
    SettingExplanation{"ID3VersionOption",
                       "Version of the tags. Kept for other programs that read this file."},
};

constexpr std::array PlaylistFiles{
    SettingExplanation{"PlayListPath", "Folder of the .pla playlists."},
    SettingExplanation{"PlayListPath2", "Folder of the .m3u playlists."},
    SettingExplanation{"ArtistPlaylist", "Make a playlist for each artist."},
    SettingExplanation{"GenrePlaylist", "Make a playlist for each genre."},
    SettingExplanation{"ArtistThreshold", "The fewest tracks for which an artist gets a playlist."},
    SettingExplanation{"MaxPlaylistLength",
                       "A generated playlist with more tracks than this is split into parts."},
    SettingExplanation{"PlaylistByAlbumOption",
                       "1: artist playlists name whole albums instead of tracks."},
    SettingExplanation{"RandomizePlaylist", "Shuffle the generated playlists."},
};

constexpr std::array CoversAndPicker{
    SettingExplanation{"AlbumCoverFolder", "Folder of the album cover images."},
    SettingExplanation{"coverPath", "Web path under which pages refer to the cover images."},
    SettingExplanation{"ImagesWide", "Covers side by side on a page of the album picker."},
    SettingExplanation{"ImagesHigh", "Rows of covers on a page of the album picker."},
    SettingExplanation{"PickerMinimum", "The fewest tracks for which an album is on a page."},
    SettingExplanation{"PickerFormatOption",
                       "0: pages with plain links. 1: pages with buttons of a form."},
};

constexpr std::array Groups{
    SettingGroup{"What a run does", WhatToRun},
    SettingGroup{"The library", LibraryFiles},
    SettingGroup{"Tags", Tags},
    SettingGroup{"Playlists", PlaylistFiles},
    SettingGroup{"Covers and album picker", CoversAndPicker},
};

constexpr std::string_view Head =
    "; Settings of the library maintenance. Each run reads them once, at its start, and never\n"
    "; writes them. Yes and no are 1 and 0. Paths are Windows paths; host.ini says which local\n; "
    "folder a drive letter stands for.\n"
    ";\n"
    "; A run does one thing: the first of ID3Update, AddFiles, ID3Write, AlbumPicker, PlaToM3u,\n"
    "; MakeRemote, M3uToPla and Reconcile that is on. The first three need LibraryRoot.\n"
    "\n"
    "[NPFrame]\n";

std::string_view DefaultOf(std::string_view key) {
    const auto definitions = SettingDefinitions();
    const auto found = std::ranges::find(definitions, key, &SettingDefinition::key);
    return found == definitions.end() ? std::string_view() : found->fallback;
}

}  // namespace

std::span<const SettingGroup> SettingGroups() {
    return Groups;
}

std::string SettingsFileText(const std::map<std::string_view, std::string>& values) {
    std::string text(Head);
    for (const SettingGroup& group : Groups) {
        text += fmt::format("\n; ===== {} =====\n", group.title);
        for (const SettingExplanation& setting : group.settings) {
            const std::string_view fallback = DefaultOf(setting.key);
            const auto chosen = values.find(setting.key);
            text += fmt::format("\n; {} Default: {}\n{}={}\n", setting.text,
                                fallback.empty() ? "empty" : fallback, setting.key,
                                chosen == values.end() ? fallback : chosen->second);
        }
    }
    return text;
}

}  // namespace quillon
