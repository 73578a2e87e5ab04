#include "tests/jet/storage/random_rows.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

#include "jet/error.h"

namespace jet::storage::test {

namespace {

/// Lengths around which memos change their form, and texts their coding.
constexpr std::array<std::size_t, 16> Lengths{0,  1,  2,  3,   10,   20,   31,   32,
                                              33, 64, 65, 500, 2038, 4076, 4077, 9000};

}  // namespace

std::string RandomRows::Text(std::size_t length) {
    constexpr std::string_view Letters = "abcdefghijklmnopqrstuvwxyzABCDEFGH 0123456789-'.,!";
    constexpr std::array<std::string_view, 5> Wide{"é", "Ł", "Ж", "€", "中"};
    const bool plain = Below(3) != 0;
    std::string text;
    for (std::size_t i = 0; i < length; ++i) {
        if (plain || Below(4) != 0) {
            text += Letters[Below(Letters.size())];
        } else {
            text += Wide[Below(Wide.size())];
        }
    }
    return text;
}

Value RandomRows::Unchecked(const ColumnDefinition& column) {
    const auto number = static_cast<std::int64_t>(random_());
    switch (column.type) {
        case ColumnType::Boolean:
            return Below(2) == 0;
        case ColumnType::Byte:
            return number % 256;
        case ColumnType::Integer:
            return number % 65536 - 32768;
        case ColumnType::Long:
            return number - std::numeric_limits<std::int32_t>::max() - 1;
        case ColumnType::Currency:
            return Currency{(number - 2000000000) * 1000};
        case ColumnType::Single:
            return static_cast<double>(static_cast<float>(number) / 1000.0F);
        case ColumnType::Double:
            return static_cast<double>(number) / 7 - 100000000;
        case ColumnType::Date:
            return Date{static_cast<double>(number % 80000 - 20000) + 0.25};
        case ColumnType::Binary:
            return Bytes(1 + Below(column.size), static_cast<std::uint8_t>(number));
        case ColumnType::Text:
            return Text(Below(4) == 0 ? Below(column.size + 1U)
                                      : Below(std::min<std::size_t>(column.size, 12) + 1));
        case ColumnType::Ole:
            return Bytes(Lengths[Below(Lengths.size())], static_cast<std::uint8_t>(number));
        case ColumnType::Memo:
            return Text(Lengths[Below(Lengths.size())]);
        case ColumnType::Guid: {
            Guid guid;
            for (auto& byte : guid.bytes)
                byte = static_cast<std::uint8_t>(random_());
            return guid;
        }
        case ColumnType::Decimal: {
            Decimal decimal;
            decimal.magnitude[3] = static_cast<std::uint32_t>(Below(10));
            decimal.negative = decimal.magnitude[3] != 0 && Below(2) == 0;
            decimal.scale = column.scale;
            return decimal;
        }
    }
    return Null{};
}

Value RandomRows::ValueFor(const ColumnDefinition& column) {
    const bool mayBeNull = column.type != ColumnType::Boolean && !column.required;
    if (mayBeNull && Below(6) == 0) return Null{};
    return Unchecked(column);
}

Row RandomRows::RowFor(const TableDefinition& table) {
    Row row;
    for (const auto& column : table.columns) {
        row.push_back(column.autoNumber ? Value(Null{}) : ValueFor(column));
    }
    return row;
}

ModelledTable::ModelledTable(Table& table, std::uint32_t seed)
    : table_(table), random_(seed), rows_(RowsOf(table)) {}

void ModelledTable::Change(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t kind = random_.Below(10);
        try {
            if (kind < 4) {
                InsertOne();
            } else if (kind < 8) {
                UpdateOne();
            } else {
                DeleteOne();
            }
        } catch (const Error& error) {
            const bool isRefusal = error.Kind() == ErrorKind::Duplicate ||
                                   error.Kind() == ErrorKind::Required ||
                                   error.Kind() == ErrorKind::TooLong;
            if (!isRefusal) throw;
            ++refused_;
        }
    }
}

void ModelledTable::InsertOne() {
    Row row = random_.RowFor(table_.Definition());
    const auto inserted = table_.Insert(row);
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (table_.Definition().columns[i].autoNumber) {
            row[i] = std::int64_t{inserted.autoNumber.value()};
        }
    }
    rows_[inserted.row] = std::move(row);
}

void ModelledTable::UpdateOne() {
    if (rows_.empty()) return;
    const auto& columns = table_.Definition().columns;
    const auto chosen = Any();
    std::vector<FieldChange> changes;
    for (std::size_t i = 0; i < 1 + random_.Below(3); ++i) {
        const std::size_t column = random_.Below(columns.size());
        if (columns[column].autoNumber) continue;
        changes.push_back({column, random_.ValueFor(columns[column])});
    }
    table_.Update(chosen->first, changes);
    for (const auto& change : changes)
        chosen->second[change.column] = change.value;
}

void ModelledTable::DeleteOne() {
    if (rows_.empty()) return;
    const auto chosen = Any();
    table_.Delete(chosen->first);
    rows_.erase(chosen);
}

void ModelledTable::DeleteAll() {
    while (!rows_.empty())
        DeleteOne();
}

std::map<RowId, Row>::iterator ModelledTable::Any() {
    // Near enough to a random row, and cheap in a large map.
    const RowId first = rows_.begin()->first, last = rows_.rbegin()->first;
    const auto page =
        first.page + static_cast<PageNumber>(random_.Below(last.page - first.page + 1));
    const auto found = rows_.lower_bound({page, static_cast<std::uint8_t>(random_.Below(16))});
    return found == rows_.end() ? rows_.begin() : found;
}

std::map<RowId, Row> RowsOf(const Table& table) {
    std::map<RowId, Row> rows;
    table.Scan([&rows](RowId id, Row&& row) { rows.emplace(id, std::move(row)); });
    return rows;
}

}  // namespace jet::storage::test
