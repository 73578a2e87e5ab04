#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "playlists/generated_lists.h"

namespace quillon {

class Run;

/// A row of the table `Playlists` for a file that a generator has made which is switched on: this
/// run generates the file again, or no longer needs it.
struct GeneratedRow {
    std::string folder;  ///< `PlayListPath` where it is that folder, by whatever name
    std::string name;    ///< the file's, with extension
    bool byGenre = false, byArtist = false;

    std::string Path() const { return folder + name; }
};

class GeneratedRows {
  public:
    void Add(const Run& run, GeneratedRow row);
    const std::vector<GeneratedRow>& All() const { return rows_; }
    /// Whether there is a row for a file of this name in the playlist folder.
    bool HaveName(std::string_view name) const;

  private:
    std::vector<GeneratedRow> rows_;
    std::unordered_set<std::string> names_;  ///< in lower case
};

/// Reads the table. Rows of files that have no playlist's name are left out. Throws Failure.
GeneratedRows ReadGeneratedRows(Run& run);

/// Sees to it that the generated playlist of this name (without extension) has a row in the table
/// `Playlists` with the family's mark, by which a later run finds it. One that has it already is
/// not written. Throws Failure.
void RecordPlaylist(Run& run, const std::string& name, GeneratedBy family);

}  // namespace quillon
