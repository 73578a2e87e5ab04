#pragma once

#include <optional>

#include "jet/engine/mirror_table.h"

namespace jet::engine {

/// Reads the fields of one row at a time, when they are asked for.
class RowReader {
  public:
    RowReader(StatementCache& statements, MirrorTable& table);

    MirrorTable& Table() const { return *table_; }
    /// Goes to the row; false if it does not exist (any more).
    bool Stand(RowKey key);
    /// A field of the row that Stand() found.
    Value Read(std::size_t column) const;

  private:
    StatementCache* statements_;
    MirrorTable* table_;
    std::string sql_;
    std::optional<StatementLease> statement_;
    RowKey key_ = 0;
    std::uint64_t changes_ = 0;
    bool found_ = false;
};

}  // namespace jet::engine
