#include "app/database_needs.h"

#include <algorithm>
#include <fmt/format.h>
#include <string_view>

#include "app/jukebox_database.h"

namespace quillon {
namespace {

using jet::ColumnType;

/// Types that can stand for one another, since values are converted on their way into a field.
std::string_view Family(ColumnType type) {
    switch (type) {
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
        case ColumnType::Currency:
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::Decimal:
            return "a number";
        case ColumnType::Text:
        case ColumnType::Memo:
            return "a text";
        case ColumnType::Date:
            return "a date";
        case ColumnType::Boolean:
            return "yes or no";
        case ColumnType::Binary:
        case ColumnType::Ole:
        case ColumnType::Guid:
            break;
    }
    return "another kind of value";
}

/// ASCII alone: the names looked for have no other letters.
bool SameName(std::string_view left, std::string_view right) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::ranges::equal(left, right, {}, lower, lower);
}

/// A field of a new database that the tool itself never asks for.
bool IsForOthersOnly(std::string_view table, std::string_view field) {
    return table == "Playlists" && field == "ID";
}

}  // namespace

std::vector<std::string> MissingForTheTool(std::span<const jet::TableDefinition> tables) {
    std::vector<std::string> missing;
    for (const jet::TableDefinition& needed : JukeboxTables()) {
        const auto table = std::ranges::find_if(tables, [&needed](const auto& candidate) {
            return SameName(candidate.name, needed.name);
        });
        if (table == tables.end()) {
            missing.push_back(fmt::format("The database has no table {}", needed.name));
            continue;
        }
        for (const jet::ColumnDefinition& column : needed.columns) {
            const auto position = table->FindColumn(column.name);
            if (!position) {
                if (!IsForOthersOnly(needed.name, column.name))
                    missing.push_back(
                        fmt::format("Table {} has no field {}", needed.name, column.name));
                continue;
            }
            const std::string_view wanted = Family(column.type);
            const std::string_view actual = Family(table->columns[*position].type);
            if (actual != wanted)
                missing.push_back(fmt::format("Field {} of table {} holds {} instead of {}",
                                              column.name, needed.name, actual, wanted));
        }
    }
    return missing;
}

}  // namespace quillon
