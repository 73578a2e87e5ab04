#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "run/hash_index.h"
#include "run/text_pool.h"

namespace quillon {

/// One row of the playlist working set. What a phase has no use for stays 0 or empty.
struct PlaylistEntry {
    std::int32_t ID = 0;           ///< `Tracks.ID` of the song
    std::int32_t Track = 0;        ///< its position; the phases say whether counted from 0 or 1
    std::string_view Artist = {};  ///< up to 255 characters, as the next two
    std::string_view CDJID = {};   ///< up to 20 characters
    std::string_view Genre = {};
    std::string_view Playlist = {};  ///< the file's name, with extension and without folder
    std::int32_t Processed = 0;      ///< 1 once the entry has been met again
    std::int32_t Random = 0;         ///< sort key
};

/// The bytes of a playlist, as far as they tell it from another version of itself. The time does
/// not count: a copy put back from a backup holds the old positions, too.
struct PlaylistContent {
    std::uint64_t size = 0;         ///< bytes
    std::uint32_t fingerprint = 0;  ///< of them

    bool operator==(const PlaylistContent&) const = default;
};

/// The playlist working set of a run: what stands in the playlists, tied to the songs' rows before
/// the library changes. It lives in memory only, holds a million entries in some 60 MB and answers
/// its look-ups by index. Names compare without letter case, as they do in record-set filters.
class PlaylistEntries {
  public:
    using Position = std::uint32_t;

    void Add(const PlaylistEntry& entry);
    std::size_t Count() const { return rows_.size(); }

    /// The entry's texts are valid until the set is cleared. Its `ID` is that of the row which the
    /// song has now, see SongBecame.
    PlaylistEntry At(Position position) const;

    /// The first entry of this song (`ID`) in a playlist.
    std::optional<Position> FindSong(std::int32_t id, std::string_view playlist) const;
    /// The first entry of this album (`CDJID`) and position (`Track`) in a playlist.
    std::optional<Position> FindPlace(std::string_view cdjid, std::int32_t track,
                                      std::string_view playlist) const;

    void SetProcessed(Position position) { rows_[position].processed = 1; }

    /// The entries that have a genre (an artist), ordered by it and then by `Random`; those equal
    /// in both come in the order in which they were added.
    std::vector<Position> ByGenre() const { return Sorted(genres_, &Row::genre); }
    std::vector<Position> ByArtist() const { return Sorted(artists_, &Row::artist); }

    /// The song of one row is from now on that of another: its file is a duplicate, and goes.
    /// Entries of both songs stay as they are, so a playlist may come to hold one song twice.
    void SongBecame(std::int32_t oldId, std::int32_t newId);
    /// It is not: the file could not go.
    void SongStays(std::int32_t id) { became_.erase(id); }
    /// The row that has the song now.
    std::int32_t Present(std::int32_t id) const;
    /// Whether the entry was added for another row than the one it has now.
    bool HasBecomeAnother(Position position) const;

    /// The row of a song is about to get another path. What is kept has to know it by both.
    void SongMoves(std::int32_t id, std::string path) { newPaths_[id] = std::move(path); }
    /// That path; null where the song stays.
    const std::string* NewPathOf(std::int32_t id) const {
        const auto found = newPaths_.find(id);
        return found == newPaths_.end() ? nullptr : &found->second;
    }

    /// What keeps the set for the case that the run does not come to its end.
    void OnKeep(std::function<void()> keep) { keep_ = std::move(keep); }
    /// Lets it keep what songs have become. Throws what it throws.
    void Keep() const {
        if (keep_) keep_();
    }

    /// The entries of a playlist have all been added; its file had this content.
    void NoteRead(std::string_view playlist, const PlaylistContent& content);
    /// The content that was noted; nothing of a playlist that was not read, and of which the set
    /// knows nothing: that it has no entry means nothing.
    std::optional<PlaylistContent> ContentOf(std::string_view playlist) const;
    std::size_t ReadCount() const { return contents_.size(); }

    /// The playlist is there and could not be read.
    void NoteUnread(std::string_view playlist);
    bool IsUnread(std::string_view playlist) const { return IsIn(unread_, playlist); }
    bool HasUnread() const { return !unread_.empty(); }

    /// The playlist is one that this run generates again, whatever it held.
    void NoteMadeAnew(std::string_view playlist);
    bool IsMadeAnew(std::string_view playlist) const { return IsIn(madeAnew_, playlist); }

    /// The playlists have not been looked at, or could not be.
    void NoteNothingRead() { nothingRead_ = true; }
    bool NothingRead() const { return nothingRead_; }

  private:
    using Text = TextPool::Number;

    struct Row {
        std::int32_t id, track, processed, random;
        Text artist, cdjid, genre, playlist;
    };

    std::optional<Position> SongRow(std::int32_t id, Text playlist) const;
    std::optional<Position> PlaceRow(Text cdjid, std::int32_t track, Text playlist) const;
    std::vector<Position> Sorted(const TextPool& texts, Text Row::* text) const;
    bool IsIn(const std::unordered_set<Text>& names, std::string_view playlist) const;

    /// One a field, so that none takes its spelling from another.
    TextPool artists_, cdjids_, genres_, playlists_;
    std::vector<Row> rows_;
    HashIndex bySong_, byPlace_;
    std::unordered_map<std::int32_t, std::int32_t> became_;  ///< row by the one it was before
    std::unordered_map<std::int32_t, std::string> newPaths_;
    std::function<void()> keep_;
    std::unordered_map<Text, PlaylistContent> contents_;
    std::unordered_set<Text> unread_, madeAnew_;
    bool nothingRead_ = false;
};

}  // namespace quillon
