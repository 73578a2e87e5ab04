#pragma once

#include <array>
#include <memory>
#include <string_view>

#include "id3/tag_comparison.h"
#include "platform/database.h"

namespace quillon {

class Run;

/// Appends to the difference table. All rows of a run carry the same time.
class DifferenceRows {
  public:
    /// Throws Failure when the table cannot be used: otherwise every file would report it again.
    DifferenceRows(Connection& connection, DateTime updateTime);

    /// Adds a row for a file; `song` is its title. If it throws Failure, nothing of the row is
    /// left.
    void Add(std::string_view artist, std::string_view album, std::string_view song,
             const TagDifference& difference);

  private:
    std::unique_ptr<RowInserter> rows_;
    std::array<Value, 7> row_;
};

/// Writes every row of the difference table to Data\Quillon\QuillonReconcile.csv below the host's
/// folder: all fields in the table's order, each followed by a comma, without headings and quotes.
/// Failures are logged with "OutputReconcileTable".
void OutputReconcileTable(Run& run);

}  // namespace quillon
