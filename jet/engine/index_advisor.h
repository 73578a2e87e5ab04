#pragma once

#include <map>
#include <unordered_map>

#include "jet/dialect/translate.h"
#include "jet/engine/mirror_table.h"

namespace jet::engine {

/// Makes indexes in the in-memory database where statements look rows up, so that none scans a
/// table for each row of another. A look-up by several fields gets one index, on the field whose
/// values tell rows apart best.
class IndexAdvisor {
  public:
    IndexAdvisor(Sqlite& sqlite, StatementCache& statements)
        : sqlite_(sqlite), statements_(statements) {}

    /// Makes what a statement's use of the table wants and lacks.
    void Prepare(const dialect::TableUse& use, const MirrorTable& table);

  private:
    struct Known {
        std::uint64_t generation = 0;
        std::unordered_map<std::size_t, double> share;  ///< see ShareOfMatches
        std::vector<std::size_t> equal, suffix;         ///< columns with an index
        std::vector<std::string> lists;                 ///< indexes by their SQL
    };
    double ShareOfMatches(const MirrorTable& table, std::size_t column, Known& known);
    double Sample(const MirrorTable& table, std::size_t column);
    void PrepareEqual(const dialect::TableUse& use, const MirrorTable& table, Known& known);
    void Create(const MirrorTable& table, const std::string& columns);

    Sqlite& sqlite_;
    StatementCache& statements_;
    std::map<const MirrorTable*, Known> known_;
    std::size_t created_ = 0;
};

}  // namespace jet::engine
