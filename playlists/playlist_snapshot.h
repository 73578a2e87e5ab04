#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/files.h"
#include "run/playlist_entries.h"

namespace quillon {

class Run;
class TrackIndex;

/// Between the capture and the refresh of the playlists the library is renumbered, and only the
/// working set knows which songs the files mean. The playlist snapshot keeps it in a file beside
/// the database ("<database>.playlists") for just that time, so that a run that is killed or
/// aborted does not leave lists that name other songs: the next capture takes from it what it
/// needs.

/// The bytes of a playlist, as far as they tell it from another version of itself. The time does
/// not count: a copy put back from a backup holds the old positions, too.
struct PlaylistContent {
    std::uint64_t size = 0;         ///< bytes
    std::uint32_t fingerprint = 0;  ///< of its lines

    bool operator==(const PlaylistContent&) const = default;
};

/// An entry that was captured.
struct CapturedEntry {
    std::string cdjid;
    std::int32_t index = 0;       ///< position in the file, counted from 0
    std::int32_t id = 0;          ///< `Tracks.ID`
    std::uint32_t soundFile = 0;  ///< fingerprint; tells a row from one in a replaced database

    bool operator==(const CapturedEntry&) const = default;
};

/// A playlist that was captured, as an earlier run left it in its snapshot.
struct CapturedPlaylist {
    PlaylistContent content;
    std::vector<CapturedEntry> entries;
};

/// What an interrupted run had captured.
class PlaylistSnapshot {
  public:
    void Add(std::string_view name, CapturedPlaylist playlist);
    /// The playlist as it was captured, provided that the file still has that content; else null.
    const CapturedPlaylist* Find(std::string_view name, const PlaylistContent& content) const;

  private:
    std::unordered_map<std::string, CapturedPlaylist> playlists_;  ///< by name in lower case
};

/// Part of the working set: the entries of one playlist, which were added one behind the other.
struct PlaylistRange {
    std::string name;
    PlaylistContent content;
    PlaylistEntries::Position begin = 0, end = 0;
};

/// Writes the working set's playlists, durably. Without any there is nothing to keep, and a
/// snapshot that an earlier run has left is removed. Throws Failure.
void WritePlaylistSnapshot(Run& run, const TrackIndex& tracks,
                           const std::vector<PlaylistRange>& playlists);

/// The snapshot that an interrupted run has left; nothing without one. A damaged one is logged and
/// not used. Throws Failure.
std::optional<PlaylistSnapshot> ReadPlaylistSnapshot(Run& run);

/// All playlists say again what they mean: removes the snapshot.
void DiscardPlaylistSnapshot(Run& run);

/// The snapshot's path for a database file: "<database>.playlists".
std::string PlaylistSnapshotPath(std::string_view database);

}  // namespace quillon
