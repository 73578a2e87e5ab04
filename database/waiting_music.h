#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "library/library.h"
#include "platform/date_time.h"

namespace quillon {

class Run;

/// A track that has no file at present and keeps its row for a while.
struct WaitingSong {
    std::int32_t number = 0;  ///< in its album, when it was last there; 0: none
    DateTime since;           ///< when it was first missed
};

/// An entry of a playlist whose song waits, and which therefore is not in the playlist's file.
struct WaitingEntry {
    std::size_t position = 0;  ///< among all entries, those that wait included; counted from 0
    TrackId song{};

    bool operator==(const WaitingEntry&) const = default;
};

/// The music that is missing and not given up yet. A file beside the database
/// ("<database>.missing") keeps from when on it is missing and its places in playlists.
///
/// What is read is matched with the library's rows; what has none there is forgotten.
class WaitingMusic {
  public:
    /// Reads the file and notes in the library's rows which of them wait. A damaged file is logged
    /// and made anew. Failure when it cannot be read.
    explicit WaitingMusic(Run& run);

    /// Null where the track is not known to wait.
    const WaitingSong* Find(TrackId song) const;
    const std::map<TrackId, WaitingSong>& Songs() const { return songs_; }
    void Add(TrackId song, const WaitingSong& waiting);
    void Remove(TrackId song);

    /// The entries that a playlist lacks, by position.
    const std::vector<WaitingEntry>& EntriesOf(std::string_view playlist) const;
    void SetEntries(std::string_view playlist, std::vector<WaitingEntry> entries);
    /// The names of playlists that lack any, in lower case.
    std::vector<std::string> Playlists() const;

    /// Writes the file where it would not be the same again; without anything to keep it is
    /// removed. Throws Failure.
    void Save();

  private:
    void Read();
    void ForgetGone();
    std::string Path() const;

    Run& run_;
    std::map<TrackId, WaitingSong> songs_;
    std::map<std::string, std::vector<WaitingEntry>> entries_;  ///< by playlist in lower case
    bool isChanged_ = false;
};

/// The path of that file.
std::string WaitingMusicPath(std::string_view database);

}  // namespace quillon
