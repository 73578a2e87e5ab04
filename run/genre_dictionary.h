#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "library/row_index.h"
#include "library/rows.h"

namespace quillon {

/// Genre of each download-table song by artist, album and song joined with nothing between; letter
/// case counts. It keeps no names of its own, as there may be a million songs.
class GenreDictionary {
  public:
    /// Of several songs of one key the first one counts. The song must stay where it is, and keep
    /// its names, as long as it is in here.
    void Add(const SongRow& song, std::string_view genre);

    /// "" where there is no such song.
    const std::string& Find(std::string_view artist, std::string_view album,
                            std::string_view song) const;

    std::size_t Size() const { return entries_.size(); }
    void Clear() { *this = {}; }

  private:
    struct Entry {
        const SongRow* song;
        const std::string* genre;
    };

    const Entry* FindKey() const;
    void SetKey(std::string_view artist, std::string_view album, std::string_view song) const;

    std::vector<Entry> entries_;
    RowIndex byKey_;
    std::unordered_set<std::string> genres_;
    mutable std::string key_;  ///< that is looked for
};

}  // namespace quillon
