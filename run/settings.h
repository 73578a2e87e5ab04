#pragma once

#include <cstdint>
#include <string>

namespace quillon {

/// All settings of a run, by their keys in section "NPFrame" of "Quillon.ini".
struct Settings {
    std::string FromFilesPath;
    std::string LibraryRoot;
    std::string ExcludeList;
    std::string PlayListPath;   ///< ends in a backslash
    std::string PlayListPath2;  ///< ends in a backslash
    std::string Nirvis_CDJ_DB;
    std::string AlbumCoverFolder;  ///< ends in a backslash
    bool PickerFormatOption = false;
    bool ID3ActionOption = false;
    bool ID3VersionOption = false;
    std::string coverPath;  ///< web path: begins and ends with "/"
    std::int16_t ImagesWide = 5;
    std::int16_t ImagesHigh = 3;
    std::int16_t PickerMinimum = 8;
    std::int16_t ArtistThreshold = 0;
    std::int16_t MaxPlaylistLength = 100;
    bool LibraryDepthOption = false;
    bool FlatStructure = false;
    bool ReconcileOption = false;
    bool ArtistPlaylist = true;
    bool GenrePlaylist = true;
    bool PlaylistsOnly = false;
    bool ID3Reconcile = true;
    bool AddFiles = false;
    bool ID3Write = false;
    bool ID3Update = false;
    bool Reconcile = false;
    bool AlbumPicker = false;
    bool PlaToM3u = false;
    bool M3uToPla = false;
    bool MakeRemote = false;
    bool PlaylistByAlbumOption = false;
    bool RandomizePlaylist = false;
};

}  // namespace quillon
