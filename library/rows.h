#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "platform/database.h"

namespace quillon {

/// `Albums.ID`, `Tracks.ID` and `Spinner.ID`.
enum class AlbumId : std::int64_t {};
enum class TrackId : std::int64_t {};
enum class SongId : std::int64_t {};

/// A text of a row. Null reads as the empty text, and is not the same.
class RowText {
  public:
    RowText() = default;
    /// Null unless the value is a text.
    explicit RowText(const Value& value) {
        if (const auto* const text = std::get_if<std::string>(&value)) *this = RowText(*text);
    }
    explicit RowText(std::string text) : text_(std::move(text)), isNull_(false) {}

    bool IsNull() const { return isNull_; }
    bool IsEmpty() const { return text_.empty(); }
    const std::string& Text() const { return text_; }
    operator const std::string&() const { return text_; }       // NOLINT: reads as a text
    operator std::string_view() const { return text_; }         // NOLINT: likewise
    friend bool operator==(const RowText& row, std::string_view text) { return row.text_ == text; }

  private:
    std::string text_;
    bool isNull_ = true;
};

/// A count or number as a row holds it; nothing stands for Null.
using RowNumber = std::optional<std::int32_t>;

/// Nothing unless the value is a number.
RowNumber NumberOf(const Value& value);

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
    void GiveBack() { Set(before_); }

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
};

/// A row of `Tracks`.
struct TrackRow {
    std::uint32_t place = 0;  ///< among the rows in memory
    RowKey key{};
    TrackId id{};
    RowText cdjid, title, artist, soundFile;
    RowText cdjidBefore = {};  ///< of the album that it was in when the run began; Null: the same
    MarkableNumber number;  ///< `Track`
    RowNumber tagNumber = {};  ///< what the comparison of tags has found for it
    RowNumber minutes, seconds;
    std::optional<DateTime> added;  ///< `DateAdded`
    bool isOwn = false;    ///< of an album of the tool's
    bool isNew = false, isGone = false;
};

/// A row of `Spinner`, the download table.
struct SongRow {
    RowKey key{};
    SongId id{};
    RowText artist, album, song, genre;
    bool isExcluded = false;
};

/// A row of `Playlists`.
struct PlaylistRow {
    RowKey key{};
    RowText folder, name, type;  ///< `FilePath`, `Filename`, `Type`
    bool byGenre = false, byArtist = false;
};

}  // namespace quillon
