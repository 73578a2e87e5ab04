#pragma once

#include <string_view>

#include "jet/dialect/expression_parser.h"
#include "jet/dialect/syntax.h"
#include "jet/dialect/token_reader.h"

namespace jet::dialect {

/// The first name that CREATE TABLE has for a type, in small letters.
std::string_view TypeNameOf(ColumnType type);

/// Parses statements that make and remove tables and indexes.
class SchemaParser {
  public:
    /// The reader stands behind CREATE or DROP.
    SchemaParser(TokenReader& reader, ExpressionParser& expressions)
        : reader_(reader), expressions_(expressions) {}

    Statement ParseCreate();
    Statement ParseDrop();

  private:
    CreateTable ParseTable();
    CreateIndex ParseIndex(bool unique);
    void ParseColumn(TableDefinition& table);
    void ParseType(ColumnDefinition& column);
    void ParseColumnRules(TableDefinition& table);
    void ParseConstraint(TableDefinition& table);
    std::uint16_t ParseSize(std::string_view what, std::uint16_t most);

    TokenReader& reader_;
    ExpressionParser& expressions_;
};

}  // namespace jet::dialect
