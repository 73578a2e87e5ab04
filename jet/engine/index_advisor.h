#pragma once

#include <map>
#include <unordered_map>
#include <vector>

#include "jet/dialect/translate.h"
#include "jet/engine/mirror_table.h"

namespace jet::engine {

/// How well a column tells rows apart, from a sample.
struct ColumnSelectivity {
    /// The share of the table's rows that have the same value as a row picked at random: what an
    /// index on the column would leave to look at. A few names that many rows have count for as
    /// much as they cost, which the mean over all names does not tell.
    double share;
    std::size_t values;  ///< different ones in the sample
};

/// Makes indexes in the in-memory database where statements look rows up, so that none scans a
/// table for each row of another. A look-up by several fields gets one index, on the field whose
/// values tell rows apart best; on all of them, that one first, where it leaves more than a few.
class IndexAdvisor {
  public:
    IndexAdvisor(Sqlite& sqlite, StatementCache& statements)
        : sqlite_(sqlite), statements_(statements) {}

    /// Makes the indexes that a statement's use of the table needs and that are missing.
    void Prepare(const dialect::TableUse& use, const MirrorTable& table);

    /// Makes sure that a join can begin without a scan: in one of its tables at least, the one
    /// where fewest rows are left, an index finds rows by the values that the statement names.
    void PrepareEntry(const std::vector<dialect::TableUse>& uses,
                      const std::vector<MirrorTable*>& tables);

  private:
    using Columns = std::vector<std::size_t>;
    struct Known {
        std::uint64_t generation = 0;
        std::unordered_map<std::size_t, ColumnSelectivity> columns;
        std::vector<Columns> equal;       ///< indexes by their columns
        std::vector<std::size_t> suffix;  ///< columns with an index
        std::vector<std::string> lists;   ///< indexes by their SQL
    };
    /// An index, and how many rows its first column leaves to look at.
    struct Choice {
        Columns columns;
        double rows;
    };
    const ColumnSelectivity& Selectivity(const MirrorTable& table, std::size_t column,
                                         Known& known);
    ColumnSelectivity Sample(const MirrorTable& table, std::size_t column);
    /// The best index for a look-up by all these columns; without columns where none helps.
    Choice Best(const MirrorTable& table, Columns lookedUp, Known& known);
    double RowsLeft(const MirrorTable& table, std::size_t column, Known& known);
    /// Makes that index, unless one that is there does as well.
    void Ensure(const MirrorTable& table, const Columns& lookedUp, const Columns& best,
                Known& known);
    void Create(const MirrorTable& table, const std::string& columns);

    Sqlite& sqlite_;
    StatementCache& statements_;
    std::map<const MirrorTable*, Known> known_;
    std::size_t created_ = 0;
};

}  // namespace jet::engine
