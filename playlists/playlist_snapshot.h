#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/date_time.h"
#include "playlists/track_index.h"
#include "run/playlist_entries.h"

namespace quillon {

class Run;

/// Between the capture and the refresh of the playlists the library is renumbered, and only the
/// working set knows which songs the files mean. The playlist snapshot keeps it in a file beside
/// the database ("<database>.playlists") for just that time, so that a run that is killed or
/// aborted does not leave lists that name other songs: the next capture takes from it what it
/// needs. Of a list that could not be repaired it keeps it for longer.

/// An entry that was captured.
struct CapturedEntry {
    std::string cdjid;
    std::int32_t index = 0;  ///< position in the file, counted from 0
    std::int32_t id = 0;     ///< `Tracks.ID`
    SongTraits traits;       ///< tell a row from one in a replaced database

    bool operator==(const CapturedEntry&) const = default;
};

/// A playlist that was captured, as an earlier run left it in its snapshot.
struct CapturedPlaylist {
    std::string name;
    PlaylistContent content;
    std::vector<CapturedEntry> entries;
};

/// Which song each place of each album was at a time. Kept where playlists were there and could
/// not be read: their lines mean the songs of then, whenever they can be read.
struct CapturedPlaces {
    DateTime time;
    std::vector<std::string> names;  ///< of these playlists; none where the folder was unreadable
    std::vector<CapturedEntry> entries;

    /// Whether a playlist of this name is meant.
    bool AreFor(std::string_view name) const;
};

/// What an earlier run had captured and not repaired.
class PlaylistSnapshot {
  public:
    void Add(CapturedPlaylist playlist);
    const std::vector<CapturedPlaylist>& Playlists() const { return playlists_; }
    /// Null when there is no such playlist.
    const CapturedPlaylist* Find(std::string_view name) const;

    void Add(CapturedPlaces places) { places_.push_back(std::move(places)); }
    const std::vector<CapturedPlaces>& Places() const { return places_; }
    /// What was kept for a playlist that was not captured; null when nothing was.
    const CapturedPlaces* PlacesFor(std::string_view name) const;

    /// Whether it is of another database than these tracks: some rows are there, and not one of
    /// them is the one that was captured.
    bool IsForeignTo(const TrackIndex& tracks) const;

  private:
    std::vector<CapturedPlaylist> playlists_;
    std::unordered_map<std::string, std::size_t> byName_;  ///< in lower case
    std::vector<CapturedPlaces> places_;
};

/// Part of the working set: the entries of one playlist, which were added one behind the other.
struct PlaylistRange {
    std::string name;
    PlaylistContent content;
    PlaylistEntries::Position begin = 0, end = 0;
};

/// What a snapshot is to hold.
struct SnapshotContent {
    std::vector<PlaylistRange> captured;             ///< of the run's working set
    std::vector<const CapturedPlaylist*> takenOver;  ///< from an earlier snapshot
    std::vector<CapturedPlaces> places;

    bool IsEmpty() const { return captured.empty() && takenOver.empty() && places.empty(); }
};

/// The places of all tracks at present.
CapturedPlaces PresentPlaces(const TrackIndex& tracks, DateTime now);

/// Writes the snapshot, durably. Without a playlist there is nothing to keep, and one that an
/// earlier run has left is removed. Throws Failure.
void WritePlaylistSnapshot(Run& run, const TrackIndex& tracks, const SnapshotContent& content);

/// The snapshot that an earlier run has left; nothing without one. A damaged one is logged and not
/// used. Throws Failure.
std::optional<PlaylistSnapshot> ReadPlaylistSnapshot(Run& run);

/// The snapshot keeps only the playlists for whose names the answer is yes, and its places where
/// they are wanted; without anything it is removed. Throws Failure.
void ReducePlaylistSnapshot(Run& run, const std::function<bool(std::string_view name)>& isKept,
                            bool withPlaces);

/// All playlists say again what they mean: removes the snapshot.
void DiscardPlaylistSnapshot(Run& run);

/// The snapshot's path for a database file: "<database>.playlists".
std::string PlaylistSnapshotPath(std::string_view database);

}  // namespace quillon
