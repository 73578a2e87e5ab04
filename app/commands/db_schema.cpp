// quillon db tables, quillon db schema
#include <algorithm>
#include <fmt/format.h>
#include <ostream>
#include <utility>

#include "app/commands/database_work.h"
#include "app/commands/db_command.h"
#include "app/commands/row_output.h"
#include "app/text/display_text.h"
#include "jet/statement.h"

namespace quillon {
namespace {

std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

std::string RulesOf(const jet::IndexDefinition& index) {
    std::vector<std::string> rules;
    if (index.primary) {
        rules.emplace_back("primary key");
    } else if (index.unique) {
        rules.emplace_back("unique");
    }
    if (index.required && !index.primary) rules.emplace_back("required");
    if (index.ignoreNulls) rules.emplace_back("without Nulls");
    return Joined(rules);
}

/// What holds for a field alone; indexes over several have their own list.
std::string RulesOf(const jet::TableDefinition& table, std::size_t column) {
    std::vector<std::string> rules;
    if (table.columns[column].required) rules.emplace_back("required");
    for (const jet::IndexDefinition& index : table.indexes) {
        const bool alone = index.columns.size() == 1 && index.columns.front().column == column;
        if (alone && index.unique) rules.emplace_back(index.primary ? "primary key" : "unique");
    }
    return Joined(rules);
}

std::string FieldsOf(const jet::TableDefinition& table, const jet::IndexDefinition& index) {
    std::vector<std::string> fields;
    fields.reserve(index.columns.size());
    for (const jet::IndexColumn& part : index.columns)
        fields.push_back(table.columns.at(part.column).name + (part.ascending ? "" : " DESC"));
    return Joined(fields);
}

void PrintSchema(const jet::TableDefinition& table, std::size_t rows, std::ostream& out) {
    const TableStyle style{.indent = 2, .countsRows = false};
    out << OneLine(table.name) << " (" << rows << (rows == 1 ? " row)\n" : " rows)\n");
    TablePrinter columns(out, {"Field", "Type", "Rules"}, style);
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const jet::ColumnDefinition& column = table.columns[i];
        columns.AddRow({{column.name}, {jet::SqlType(column)}, {RulesOf(table, i)}});
    }
    columns.Finish();
    if (table.indexes.empty()) return;
    out << '\n';
    TablePrinter indexes(out, {"Index", "Fields", "Rules"}, style);
    for (const jet::IndexDefinition& index : table.indexes)
        indexes.AddRow({{index.name}, {FieldsOf(table, index)}, {RulesOf(index)}});
    indexes.Finish();
}

void PrintSql(const jet::TableDefinition& table, std::ostream& out) {
    for (const std::string& statement : jet::CreateStatements(table))
        out << statement << ";\n";
}

void TellDamaged(const jet::Database& database, Console console) {
    console.out.flush();
    for (const jet::DamagedTable& table : database.Damaged())
        console.err << OneLine(fmt::format("quillon: the table '{}' is left out, it is damaged: {}",
                                           table.name, table.reason))
                    << '\n';
}

}  // namespace

int DbTables(const DbTablesRequest& request, Console console) {
    return WorkOnDatabase(
        request.file, jet::OpenMode::ReadOnly, console, [&](jet::Database& database) {
            RowOutput output(console.out, {"Table", "Rows", "Fields", "Indexes"}, request.format);
            for (const jet::TableDefinition& table : database.Tables()) {
                const auto number = [](std::size_t count) {
                    return jet::Value(static_cast<std::int64_t>(count));
                };
                output.AddRow(std::vector<jet::Value>{
                    table.name, number(database.RowCount(table.name)), number(table.columns.size()),
                    number(table.indexes.size())});
            }
            output.Finish();
            TellDamaged(database, console);
        });
}

int DbSchema(const DbSchemaRequest& request, Console console) {
    return WorkOnDatabase(
        request.file, jet::OpenMode::ReadOnly, console, [&](jet::Database& database) {
            // Names the table that does not exist.
            const std::string wanted =
                request.table.empty() ? "" : database.TableNamed(request.table).name;
            bool first = true;
            for (const jet::TableDefinition& table : database.Tables()) {
                if (!wanted.empty() && table.name != wanted) continue;
                if (request.sql) {
                    PrintSql(table, console.out);
                    continue;
                }
                if (!std::exchange(first, false)) console.out << '\n';
                PrintSchema(table, database.RowCount(table.name), console.out);
            }
            TellDamaged(database, console);
        });
}

}  // namespace quillon
