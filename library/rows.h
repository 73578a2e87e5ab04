#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/database.h"

namespace quillon {

/// `Albums.ID` and `Tracks.ID`.
enum class AlbumId : std::int64_t {};
enum class TrackId : std::int64_t {};

/// A count or number as a row holds it; nothing stands for Null.
using RowNumber = std::optional<std::int32_t>;

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

/// An album of the tool's own.
struct AlbumRow {
    RowKey key{};
    AlbumId id{};
    std::string cdjid, artist, title;
    MarkableNumber count;  ///< `Tracks`
    bool isNew = false, isGone = false;
};

/// A track of such an album.
struct TrackRow {
    RowKey key{};
    TrackId id{};
    std::string cdjid, title, artist, soundFile;
    std::string cdjidBefore;  ///< of the album that it was in when the run began
    MarkableNumber number;    ///< `Track`
    std::int32_t minutes = 0, seconds = 0;
    bool isNew = false, isGone = false;
};

}  // namespace quillon
