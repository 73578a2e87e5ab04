// quillon db import, quillon db export
#include <algorithm>
#include <fmt/format.h>
#include <fstream>
#include <iostream>

#include "app/commands/database_work.h"
#include "app/commands/db_command.h"
#include "app/commands/row_output.h"
#include "app/csv.h"
#include "app/text/display_text.h"
#include "app/value_text.h"
#include "jet/statement.h"

namespace quillon {
namespace {

/// Rows of a CSV file on their way into a table.
class Import {
  public:
    Import(jet::Database& database, const jet::TableDefinition& table, CsvReader& records)
        : database_(database), table_(table), records_(records) {}

    /// The first record names the fields.
    void TakeHeader() {
        std::vector<CsvField> names;
        if (!records_.Next(names)) throw CommandError("there is nothing in it, not even a header");
        for (const CsvField& name : names) {
            const std::size_t column = ColumnNamed(name.value_or(""));
            // Of two values for one field only one could stay.
            if (std::ranges::find(columns_, column) != columns_.end()) {
                throw CommandError(
                    fmt::format("line 1: it names the field '{}' twice", name.value_or("")));
            }
            columns_.push_back(column);
        }
    }

    void TakeAllColumns() {
        for (std::size_t i = 0; i < table_.columns.size(); ++i)
            columns_.push_back(i);
    }

    std::size_t TakeRows() {
        std::size_t rows = 0;
        for (std::vector<CsvField> record; records_.Next(record); ++rows) {
            CheckAbort();
            TakeRow(record);
        }
        return rows;
    }

  private:
    std::size_t ColumnNamed(const std::string& name) const {
        if (const auto column = table_.FindColumn(name)) return *column;
        std::string fields;
        for (const jet::ColumnDefinition& column : table_.columns)
            fields += (fields.empty() ? "" : ", ") + column.name;
        throw CommandError(
            fmt::format("line 1: the table {} has no field '{}'; it has {}. Give the fields these "
                        "names, or use "
                        "--no-header if the first line is a row",
                        table_.name, name, fields));
    }

    void TakeRow(const std::vector<CsvField>& record) {
        if (record.size() != columns_.size()) {
            throw CommandError(fmt::format("line {}: it has {} fields where {} are expected",
                                           records_.Line(), record.size(), columns_.size()));
        }
        std::vector<jet::Database::Field> fields;
        for (std::size_t i = 0; i < record.size(); ++i)
            if (record[i]) fields.push_back(FieldOf(columns_[i], *record[i]));
        try {
            database_.Insert(table_.name, fields);
        } catch (const jet::Error& error) {
            throw jet::Error(error.Kind(),
                             fmt::format("line {}: {}", records_.Line(), error.what()));
        }
    }

    jet::Database::Field FieldOf(std::size_t column, const std::string& text) const {
        const jet::ColumnDefinition& definition = table_.columns[column];
        if (!IsUtf8(text)) {
            throw CommandError(fmt::format(
                "line {}, field {}: the text is not UTF-8; convert the file first, for example "
                "with: iconv -f WINDOWS-1252 -t UTF-8",
                records_.Line(), definition.name));
        }
        try {
            return {definition.name, ValueFor(definition, text)};
        } catch (const CommandError& error) {
            throw CommandError(fmt::format("line {}, field {}: {}", records_.Line(),
                                           definition.name, error.what()));
        }
    }

    jet::Database& database_;
    const jet::TableDefinition& table_;
    CsvReader& records_;
    std::vector<std::size_t> columns_;
};

/// A table that does not exist: how to make one for this file.
jet::TableDefinition TableFor(jet::Database& database, const DbImportRequest& request) {
    try {
        return database.TableNamed(request.table);
    } catch (const jet::Error& error) {
        if (error.Kind() != jet::ErrorKind::NotFound) throw;
        throw CommandError(fmt::format(
            "{}. Make it first, for example: quillon db exec {} \"CREATE TABLE {} (ID COUNTER "
            "PRIMARY KEY, Name TEXT(50))\"",
            Clause(error), request.file.string(), jet::SqlName(request.table)));
    }
}

std::size_t ImportRecords(jet::Database& database, const DbImportRequest& request,
                          std::istream& in) {
    const jet::TableDefinition table = TableFor(database, request);
    CsvReader records(in, request.separator.front());
    jet::Transaction transaction(database);
    Import import(database, table, records);
    if (request.hasHeader) {
        import.TakeHeader();
    } else {
        import.TakeAllColumns();
    }
    const std::size_t rows = import.TakeRows();
    transaction.Commit();
    return rows;
}

}  // namespace

int DbImport(const DbImportRequest& request, Console console) {
    std::ifstream file;
    const bool isStandardInput = request.data == "-";
    const std::string name = isStandardInput ? "standard input" : request.data.string();
    if (!isStandardInput) {
        file.open(request.data, std::ios::binary);
        if (!file || std::filesystem::is_directory(request.data))
            throw CommandError(fmt::format("{} cannot be read", name));
    }
    return WorkOnDatabase(
        request.file, jet::OpenMode::ReadWrite, console, [&](jet::Database& database) {
            try {
                const std::size_t rows =
                    ImportRecords(database, request, isStandardInput ? std::cin : file);
                console.out << fmt::format("{} row{}\n", rows, rows == 1 ? "" : "s");
            } catch (const CommandError& error) {
                throw CommandError(
                    fmt::format("{}: {}; nothing was imported", name, Clause(error)));
            } catch (const jet::Error& error) {
                if (error.Kind() == jet::ErrorKind::Interrupted) throw;
                throw jet::Error(error.Kind(),
                                 fmt::format("{}: {}; nothing was imported", name, Clause(error)));
            }
        });
}

int DbExport(const DbExportRequest& request, Console console) {
    return WorkOnDatabase(
        request.file, jet::OpenMode::ReadOnly, console, [&](jet::Database& database) {
            const jet::TableDefinition table = database.TableNamed(request.table);
            std::vector<std::string> names;
            std::vector<std::string_view> fields;
            for (const jet::ColumnDefinition& column : table.columns) {
                names.push_back(column.name);
                fields.push_back(column.name);
            }
            RowOutput output(console.out, names, request.format);
            database.Scan(table.name, fields,
                          [&](jet::Database::RowKey, std::span<jet::Value> values) {
                              CheckAbort();
                              output.AddRow(values);
                          });
            output.Finish();
        });
}

}  // namespace quillon
