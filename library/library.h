#pragma once

#include <deque>
#include <span>
#include <string_view>
#include <vector>

#include "library/row_index.h"
#include "library/rows.h"
#include "library/text_rules.h"
#include "platform/database.h"

namespace quillon {

/// All albums and tracks of the database, read once. Texts are compared as the database does,
/// without letter case, and the first row is the first in the file.
///
/// Texts are written as soon as they change, so that a refusal is reported where it happens. Counts
/// and numbers are written by Save(), and only those that differ from the file.
class Library {
  public:
    /// Throws Failure. The connection must outlive this object.
    explicit Library(Connection& connection);
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    /// All rows in the file's order, new ones last, whatever their player. Rows stay where they
    /// are; skip those that are gone.
    std::deque<AlbumRow>& Albums() { return albums_; }
    std::deque<TrackRow>& Tracks() { return tracks_; }

    const TextRules& Rules() const { return rules_; }

    /// The first album of the tool's own with these names; null where there is none.
    AlbumRow* FindAlbum(std::string_view artist, std::string_view title);
    /// All albums with these names, of any player, in the file's order.
    std::vector<AlbumRow*> AlbumsNamed(std::string_view artist, std::string_view title);
    /// Whether its row is in the database still: what was read at the beginning may have gone.
    bool IsStored(const AlbumRow& album) const;
    /// The first own album with this identifier.
    AlbumRow* AlbumWith(std::string_view cdjid);
    /// All albums with this identifier, of any player, in the file's order.
    std::vector<AlbumRow*> AlbumsWith(std::string_view cdjid);
    AlbumRow* AlbumOf(const TrackRow& track) { return AlbumWith(track.cdjid); }
    /// The first own track whose stored path ends in this one: something may stand before the
    /// drive.
    TrackRow* FindTrack(std::string_view path);
    TrackRow* FindTrack(TrackId id);
    /// In the file's order; of any player, as tracks are joined to albums by the identifier alone.
    std::vector<TrackRow*> TracksOf(std::string_view cdjid);

    /// These write at once, all of it or nothing. Failure: what the database refuses. Counts and
    /// numbers of rows that are there are changed by their own means, not by Change().
    AlbumRow& AddAlbum(std::span<const FieldValue> fields);
    TrackRow& AddTrack(std::span<const FieldValue> fields);
    void Change(AlbumRow& album, std::span<const FieldValue> fields);
    void Change(TrackRow& track, std::span<const FieldValue> fields);
    void Remove(AlbumRow& album);
    void Remove(TrackRow& track);

    /// Sets all counts and numbers of the tool's own albums and tracks aside. Tracks for which the
    /// comparison of tags has found a number get that one.
    void MarkAll();

    /// Writes the counts and numbers that have changed.
    void Save();

  private:
    template <typename IsWanted>
    AlbumRow* FirstAlbum(const RowIndex& index, std::uint32_t hash, IsWanted isWanted);
    bool HasNames(const AlbumRow& album, std::string_view artist, std::string_view title) const;
    std::uint32_t HashOfNames(std::string_view artist, std::string_view title) const;
    void List(const AlbumRow& album);
    void List(const TrackRow& track);
    void ListIds();

    Connection& connection_;
    TextRules rules_;
    SharedTexts texts_;
    std::deque<AlbumRow> albums_;
    std::deque<TrackRow> tracks_;
    SharedText lastListed_;  ///< a track's identifier, and its hash
    std::uint32_t lastHash_ = 0;
    bool areIdsListed_ = false;
    RowIndex albumsByName_, albumsByCdjid_, tracksByFile_, tracksByCdjid_, tracksById_;
};

}  // namespace quillon
