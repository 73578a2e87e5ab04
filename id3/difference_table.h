#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "id3/tag_comparison.h"
#include "platform/database.h"

namespace quillon {

class Run;

/// Puts the differences that a run finds in the place of those in the difference table, in the
/// order in which they are found, all with the time of the run.
///
/// Most differences stay from run to run. So as long as they come as they stand in the table, with
/// some left out at most, their rows stay and only get the new time at the end. Where another one
/// comes, all rows are written anew.
class DifferenceRows {
  public:
    /// The connection must outlive this object.
    DifferenceRows(Connection& connection, DateTime updateTime)
        : connection_(connection), updateTime_(updateTime) {}

    /// Looks at the table; does nothing where it has done so before. Throws Failure when the table
    /// cannot be used: otherwise every file would report it again.
    void Open();

    /// Adds a row for a file; `song` is its title. If it throws Failure, nothing of the row is
    /// left. The table is open.
    void Add(std::string_view artist, std::string_view album, std::string_view song,
             const TagDifference& difference);

    /// Removes the rows that have not been added again, and gives the time to those that have.
    /// Opens the table where nobody has tried that. Throws Failure.
    void Finish();

  private:
    using Texts = std::array<std::string_view, 6>;

    /// A row that was there, in the table's order.
    struct Known {
        RowKey key{};
        std::uint64_t hash = 0;  ///< of its texts; 0: it cannot stay
        bool isAdded = false;    ///< again
    };

    bool Keep(std::uint64_t hash);
    void Insert(const Texts& texts);
    void WriteAnew();

    Connection& connection_;
    const DateTime updateTime_;
    std::unique_ptr<RowInserter> rows_;  ///< once it is open
    bool isRefused_ = false;
    std::optional<DateTime> knownTime_;  ///< of the rows that were there
    std::vector<Known> known_;           ///< as long as they stay
    std::size_t next_ = 0;               ///< of those, behind the last that was added again
    std::array<Value, 7> row_;           ///< to be written
};

/// Writes every row of the difference table to Data\Quillon\QuillonReconcile.csv below the host's
/// folder: all fields in the table's order, each followed by a comma, without headings and quotes.
/// Failures are logged with "OutputReconcileTable".
void OutputReconcileTable(Run& run);

}  // namespace quillon
