#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/files.h"

namespace quillon {

class Run;
class Steps;

/// The steps of writing tags.
enum class StoreStep {
    ReadSongs = 1,
    ListFolder = 2,
    ReadDifferences = 3,
    FindFile = 4,
    WriteTag = 5,
};

/// Finds the sound files of songs in the library folders, whichever of them they are in. Folders
/// and files are only ever taken from listings, so no name in the database leads out of the
/// library.
class SongFiles {
  public:
    /// Lists the library folders; `steps` logs those that cannot be listed, here and later.
    SongFiles(Run& run, Steps& steps);

    /// Selects an album; folders are listed again only if the artist or album is a different one.
    void GoTo(std::string_view artist, std::string_view album);

    /// Files of the album whose title is this one, whatever the letter case, with the artist before
    /// it ("Artist - Title.mp3") or without, in the order of their names; those of discs come
    /// behind. Where tracks have artists of their own, any artist may stand there.
    std::vector<FileEntry> WithTitle(std::string_view title) const;

  private:
    /// Paths of folders or files by their names in lower case.
    template <typename Entry>
    using ByName = std::unordered_map<std::string, std::vector<Entry>>;

    std::string KeyOf(std::string_view fileName) const;
    void ListAlbums();
    void ListFiles();
    std::vector<std::string> ListFilesIn(const std::string& folder);
    void Add(FileEntry file);

    Run& run_;
    Steps& steps_;
    ByName<std::string> artists_;  ///< in all library folders
    std::string artist_, album_;   ///< where we are, in lower case
    ByName<std::string> albums_;   ///< of the artist
    ByName<FileEntry> files_;      ///< of the album, by their titles
};

}  // namespace quillon
