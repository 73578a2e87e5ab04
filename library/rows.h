#pragma once

#include <cstdint>
#include <optional>

#include "library/row_text.h"
#include "library/shared_texts.h"
#include "platform/database.h"

namespace quillon {

/// `Albums.ID`, `Tracks.ID` and `Spinner.ID`.
enum class AlbumId : std::int64_t {};
enum class TrackId : std::int64_t {};
enum class SongId : std::int64_t {};

/// A count or number as a row holds it; nothing stands for Null.
using RowNumber = std::optional<std::int32_t>;

/// Nothing unless the value is a number.
RowNumber NumberOf(const Value& value);

/// Whether the value is a yes, or a number other than 0.
bool IsTrue(const Value& value);

/// A number of a row that a reconciliation sets aside until it has seen what the row stands for.
/// That state is never written: what is marked keeps in the file what it had.
class MarkableNumber {
  public:
    MarkableNumber() = default;
    /// As the file has it.
    explicit MarkableNumber(RowNumber stored)
        : present_(stored), before_(stored), stored_(stored) {}

    /// Of a row that this run has made: there was nothing before.
    static MarkableNumber OfNewRow(RowNumber stored) {
        MarkableNumber number(stored);
        number.before_ = std::nullopt;
        return number;
    }

    /// 0 while it is marked; so is Null.
    std::int32_t Value() const { return IsMarked() ? 0 : present_.value_or(0); }
    bool IsMarked() const { return isMarked_; }
    /// What the row had when the run began; nothing for a new row, too.
    RowNumber Before() const { return before_; }

    void Mark() { isMarked_ = true; }
    void Set(RowNumber number) {
        present_ = number;
        isMarked_ = false;
    }
    /// What it was when the run began.
    void Restore() { Set(before_); }

    /// What the file is to hold.
    RowNumber Truth() const { return isMarked_ ? before_ : present_; }
    bool NeedsSaving() const { return Truth() != stored_; }
    void Saved() { stored_ = Truth(); }

  private:
    RowNumber present_, before_, stored_;
    bool isMarked_ = false;
};

/// A row of `Albums`.
struct AlbumRow {
    std::uint32_t place = 0;  ///< among the rows in memory
    RowKey key{};
    AlbumId id{};
    RowText cdjid, artist, title, imageFile;
    MarkableNumber count;  ///< `Tracks`
    bool isOwn = false;    ///< the tool's, not another player's
    bool isNew = false, isGone = false;
    bool isWaiting = false;  ///< all of its tracks wait for their files
};

/// A row of `Tracks`.
struct TrackRow {
    std::uint32_t place = 0;  ///< among the rows in memory
    RowKey key{};
    TrackId id{};
    RowText title, soundFile;
    SharedText cdjid, artist;
    SharedText cdjidBefore = {};  ///< of the album that it was in when the run began; Null: this
    MarkableNumber number;        ///< `Track`
    RowNumber tagNumber = {};     ///< what the comparison of tags has found for it
    RowNumber minutes, seconds;
    std::optional<DateTime> added;  ///< `DateAdded`
    bool isOwn = false;             ///< of an album of the tool's
    bool isNew = false, isGone = false;
    bool isWaiting = false;  ///< for its file, which is gone; until then it has no number
};

/// A row of `Spinner`, the download table.
struct SongRow {
    RowKey key{};
    SongId id{};
    SharedText artist, album, genre;
    RowText song;
    bool isExcluded = false;
};

/// A row of `Playlists`.
struct PlaylistRow {
    RowKey key{};
    RowText folder, name, type;  ///< `FilePath`, `Filename`, `Type`
    bool byGenre = false, byArtist = false;
};

}  // namespace quillon
