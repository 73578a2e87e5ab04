#pragma once

#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "library/rows.h"
#include "platform/database.h"

namespace quillon {

/// The tool's own albums and their tracks, read once. Texts are compared as the database does,
/// without letter case, and the first row is the first in the file.
///
/// What a row says in words is written as soon as it changes, so that what the database refuses is
/// refused where it happens. Counts and numbers are written by Save(): only those that are others
/// than in the file.
class Library {
  public:
    /// Throws Failure. The connection must outlive this object.
    explicit Library(Connection& connection);
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    /// All rows in the file's order, new ones last. Rows stay where they are; skip those that are
    /// gone.
    std::deque<AlbumRow>& Albums() { return albums_; }
    std::deque<TrackRow>& Tracks() { return tracks_; }

    /// Null where there is none.
    AlbumRow* FindAlbum(std::string_view artist, std::string_view title);
    AlbumRow* AlbumOf(const TrackRow& track) { return AlbumWith(track.cdjid); }
    /// The first album with this identifier.
    AlbumRow* AlbumWith(std::string_view cdjid);
    /// The track whose stored path ends in this one: something may stand before the drive.
    TrackRow* FindTrack(std::string_view path);
    TrackRow* FindTrack(TrackId id);
    std::vector<TrackRow*> TracksOf(std::string_view cdjid);

    /// These write at once, all of it or nothing. Failure: what the database refuses. Counts and
    /// numbers of rows that are there are changed by their own means, not by Change().
    AlbumRow& AddAlbum(std::span<const FieldValue> fields);
    TrackRow& AddTrack(std::span<const FieldValue> fields);
    void Change(AlbumRow& album, std::span<const FieldValue> fields);
    void Change(TrackRow& track, std::span<const FieldValue> fields);
    void Remove(AlbumRow& album);
    void Remove(TrackRow& track);

    /// Sets all counts and numbers aside.
    void MarkAll();

    /// Writes the counts and numbers that have changed.
    void Save();

  private:
    void Save(AlbumRow& album);
    void Save(TrackRow& track);
    void List(AlbumRow& album);
    void List(TrackRow& track);

    Connection& connection_;
    std::deque<AlbumRow> albums_;
    std::deque<TrackRow> tracks_;
    std::unordered_map<std::string, std::vector<AlbumRow*>> albumsByName_, albumsByCdjid_;
    std::unordered_map<std::string, std::vector<TrackRow*>> tracksByFile_, tracksByCdjid_;
    std::unordered_map<TrackId, TrackRow*> tracksById_;
};

}  // namespace quillon
