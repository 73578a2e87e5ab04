#include <algorithm>

#include "jet/dialect/names.h"
#include "jet/dialect/schema_parser.h"
#include "jet/statement.h"

namespace jet {

namespace {

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    for (char& letter : upper)
        if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
    return upper;
}

std::string FieldList(const TableDefinition& table, const IndexDefinition& index) {
    std::string list;
    for (const IndexColumn& part : index.columns) {
        list += (list.empty() ? "" : ", ") + SqlName(table.columns.at(part.column).name) +
                (part.ascending ? "" : " DESC");
    }
    return list;
}

std::string CreateIndexStatement(const TableDefinition& table, const IndexDefinition& index) {
    std::string sql = index.unique && !index.primary ? "CREATE UNIQUE INDEX " : "CREATE INDEX ";
    sql +=
        SqlName(index.name) + " ON " + SqlName(table.name) + " (" + FieldList(table, index) + ")";
    if (index.primary) return sql + " WITH PRIMARY";
    if (index.required) sql += " WITH DISALLOW NULL";
    if (index.ignoreNulls) sql += index.required ? ", IGNORE NULL" : " WITH IGNORE NULL";
    return sql;
}

}  // namespace

std::string SqlType(const ColumnDefinition& column) {
    if (column.autoNumber) return "COUNTER";
    std::string type = UpperCase(dialect::TypeNameOf(column.type));
    if (column.type == ColumnType::Text || column.type == ColumnType::Binary)
        return type + "(" + std::to_string(column.size) + ")";
    if (column.type == ColumnType::Decimal) {
        return type + "(" + std::to_string(column.precision) + "," + std::to_string(column.scale) +
               ")";
    }
    return type;
}

std::string SqlName(std::string_view name) {
    return "[" + std::string(name) + "]";
}

std::vector<std::string> CreateStatements(const TableDefinition& table) {
    std::string sql = "CREATE TABLE " + SqlName(table.name) + " (";
    for (const ColumnDefinition& column : table.columns) {
        sql += (&column == table.columns.data() ? "" : ", ") + SqlName(column.name) + " " +
               SqlType(column) + (column.required ? " NOT NULL" : "");
    }
    std::vector<std::string> statements{sql + ")"};
    for (const IndexDefinition& index : table.indexes)
        statements.push_back(CreateIndexStatement(table, index));
    return statements;
}

}  // namespace jet
