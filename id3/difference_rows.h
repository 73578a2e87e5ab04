#pragma once

#include <string_view>

#include "id3/tag_comparison.h"
#include "platform/database.h"

namespace quillon {

/// Appends to the difference table. All rows of a run carry the same time.
class DifferenceRows {
  public:
    /// Throws Failure when the table cannot be used: else each file would tell it anew.
    DifferenceRows(Connection& connection, DateTime updateTime);

    /// Adds a row for a file; `song` is its title. Throws Failure; nothing of the row stays then.
    void Add(std::string_view artist, std::string_view album, std::string_view song,
             const TagDifference& difference);

  private:
    Connection& connection_;
    DateTime updateTime_;
};

}  // namespace quillon
