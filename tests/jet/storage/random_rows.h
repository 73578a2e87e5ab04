#pragma once

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "jet/schema.h"
#include "jet/storage/table.h"

namespace jet::storage::test {

/// Makes up values for columns; the same seed makes the same ones.
class RandomRows {
  public:
    explicit RandomRows(std::uint32_t seed) : random_(seed) {}

    std::size_t Below(std::size_t limit) { return random_() % limit; }
    Value ValueFor(const ColumnDefinition& column);
    /// A row with Null in the auto-number columns.
    Row RowFor(const TableDefinition& table);
    std::string Text(std::size_t length);

  private:
    Value Unchecked(const ColumnDefinition& column);

    std::mt19937 random_;
};

/// A table next to what it must contain, changed together.
class ModelledTable {
  public:
    /// Starts with the rows that the table has.
    ModelledTable(Table& table, std::uint32_t seed);

    /// Makes a few changes of all kinds. Refused ones must leave no trace.
    void Change(std::size_t count);
    void InsertOne();
    void UpdateOne();
    void DeleteOne();
    void DeleteAll();

    const std::map<RowId, Row>& Rows() const { return rows_; }
    std::size_t Refused() const { return refused_; }

  private:
    std::map<RowId, Row>::iterator Any();

    Table& table_;
    RandomRows random_;
    std::map<RowId, Row> rows_;
    std::size_t refused_ = 0;
};

/// What a table contains.
std::map<RowId, Row> RowsOf(const Table& table);

}  // namespace jet::storage::test
