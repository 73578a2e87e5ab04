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
    /// index on the column would leave to look at.
    double share;
    std::size_t values;  ///< different ones in the sample
};

/// Makes indexes in the in-memory database where statements look rows up, so that none scans a
/// table for each row of another. A look-up by several fields gets one index, on the field whose
/// values tell rows apart best.
class IndexAdvisor {
  public:
    IndexAdvisor(Sqlite& sqlite, StatementCache& statements)
        : sqlite_(sqlite), statements_(statements) {}

    /// Makes the indexes that a statement's use of the table needs and that are missing.
    void Prepare(const dialect::TableUse& use, const MirrorTable& table);

    /// Makes sure that a join can begin without a scan: in one of its tables at least, the one
    /// whose values tell rows apart best, an index finds rows by the values that the statement
    /// names.
    void PrepareEntry(const std::vector<dialect::TableUse>& uses,
                      const std::vector<MirrorTable*>& tables);

  private:
    struct Known {
        std::uint64_t generation = 0;
        std::unordered_map<std::size_t, ColumnSelectivity> columns;
        std::vector<std::size_t> equal, suffix;  ///< columns with an index
        std::vector<std::string> lists;          ///< indexes by their SQL
    };
    const ColumnSelectivity& Selectivity(const MirrorTable& table, std::size_t column,
                                         Known& known);
    ColumnSelectivity Sample(const MirrorTable& table, std::size_t column);
    void PrepareEqual(const dialect::TableUse& use, const MirrorTable& table, Known& known);
    void Create(const MirrorTable& table, const std::string& columns);

    Sqlite& sqlite_;
    StatementCache& statements_;
    std::map<const MirrorTable*, Known> known_;
    std::size_t created_ = 0;
};

}  // namespace jet::engine
