#pragma once

#include <map>
#include <unordered_map>
#include <vector>

#include "jet/dialect/translate.h"
#include "jet/engine/mirror_table.h"

namespace jet::engine {

/// How well a column tells rows apart, from a sample.
struct ColumnSelectivity {
    /// Which part of the table has the value of a row picked at random: what is left to look at
    /// after a look-up in an index on the column. Values that many rows have weigh accordingly.
    double share;
    std::size_t values;  ///< that were met
};

/// Makes indexes in the in-memory database where statements look rows up, so that none scans a
/// table for each row of another. A look-up by several fields gets one index, on the field whose
/// values tell rows apart best.
class IndexAdvisor {
  public:
    IndexAdvisor(Sqlite& sqlite, StatementCache& statements)
        : sqlite_(sqlite), statements_(statements) {}

    /// Makes what a statement's use of the table wants and lacks.
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
