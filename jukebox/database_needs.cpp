#include "jukebox/database_needs.h"

#include <algorithm>
#include <fmt/format.h>
#include <string_view>

#include "jukebox/jukebox_database.h"

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

std::vector<UnfitField> UnfitFields(const jet::TableDefinition& needed,
                                    const jet::TableDefinition& actual) {
    std::vector<UnfitField> unfit;
    for (const jet::ColumnDefinition& column : needed.columns) {
        const auto position = actual.FindColumn(column.name);
        const std::string_view wanted = Family(column.type);
        if (!position) {
            if (!IsForOthersOnly(needed.name, column.name))
                unfit.push_back({column.name, wanted, std::nullopt});
            continue;
        }
        const std::string_view family = Family(actual.columns[*position].type);
        if (family != wanted) unfit.push_back({column.name, wanted, family});
    }
    return unfit;
}

}  // namespace

std::string UnfitField::Text() const {
    if (!actual) return fmt::format("no field {}", name);
    return fmt::format("field {} holds {} instead of {}", name, *actual, wanted);
}

std::vector<TableFit> FitOfTables(std::span<const jet::TableDefinition> tables) {
    std::vector<TableFit> fits;
    for (const jet::TableDefinition& needed : JukeboxTables()) {
        const auto table = std::ranges::find_if(
            tables, [&needed](const auto& one) { return SameName(one.name, needed.name); });
        const bool isThere = table != tables.end();
        fits.push_back({needed.name, isThere,
                        isThere ? UnfitFields(needed, *table) : std::vector<UnfitField>{}});
    }
    return fits;
}

std::vector<std::string> NeededTableNames() {
    std::vector<std::string> names;
    for (const jet::TableDefinition& table : JukeboxTables())
        names.push_back(table.name);
    return names;
}

bool IsNeededTable(std::string_view name) {
    return std::ranges::any_of(JukeboxTables(),
                               [name](const auto& needed) { return SameName(needed.name, name); });
}

std::vector<std::string> MissingForTheTool(std::span<const jet::TableDefinition> tables) {
    std::vector<std::string> missing;
    for (const TableFit& table : FitOfTables(tables)) {
        if (!table.isThere)
            missing.push_back(fmt::format("The database has no table {}", table.name));
        for (const UnfitField& field : table.unfit) {
            missing.push_back(
                field.actual ? fmt::format("Field {} of table {} holds {} instead of {}",
                                           field.name, table.name, *field.actual, field.wanted)
                             : fmt::format("Table {} has no field {}", table.name, field.name));
        }
    }
    return missing;
}

}  // namespace quillon
