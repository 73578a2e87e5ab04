#include "jet/storage/stored_table.h"

#include <algorithm>
#include <utility>

#include "jet/error.h"
#include "jet/storage/damaged.h"
#include "jet/storage/definitions.h"
#include "jet/storage/format/values.h"
#include "jet/storage/long_values.h"

namespace jet::storage {

namespace {

std::string Quoted(const std::string& name) {
    return "\"" + name + "\"";
}

bool IsGeneralLegacyOrder(const ColumnLayout& column) {
    return (column.sortOrder == GeneralOrder || column.sortOrder == 0) && column.sortVersion == 0;
}

}  // namespace

StoredTable::Parts::Parts(Pager& pages, PageNumber definition)
    : layout(ReadTableLayout(pages, definition)),
      rows(pages, definition, layout.owned, layout.free),
      counters(pages, definition) {
    for (std::size_t i = 0; i < layout.realIndexes.size(); ++i) {
        indexes.push_back(std::make_unique<TableIndex>(pages, layout, i));
    }
}

StoredTable::StoredTable(Pager& pages, std::string name, PageNumber definition,
                         std::span<const std::string> requiredColumns)
    : pages_(pages), page_(definition) {
    definition_ = DefinitionOf(Current().layout, std::move(name), requiredColumns);
}

StoredTable::Parts& StoredTable::Current() const {
    if (!parts_) parts_ = std::make_unique<Parts>(pages_, page_);
    return *parts_;
}

std::optional<std::string> StoredTable::ReadOnlyReason() const {
    const TableLayout& layout = Current().layout;
    for (const auto& column : layout.columns) {
        if (!column.IsKnownType()) {
            return "field " + Quoted(column.name) + " has the unknown type " +
                   std::to_string(column.typeCode);
        }
    }
    for (const auto& index : layout.realIndexes) {
        for (const auto& part : index.parts) {
            const ColumnLayout& column = layout.columns[layout.Position(part.column)];
            if (column.IsText() && !IsGeneralLegacyOrder(column)) {
                return "an index on field " + Quoted(column.name) +
                       " is in a sort order that is not known (" +
                       std::to_string(column.sortOrder) + " version " +
                       std::to_string(column.sortVersion) + ")";
            }
            if (column.Type() == ColumnType::Ole) {
                return "there is an index on the OLE field " + Quoted(column.name);
            }
        }
    }
    return std::nullopt;
}

void StoredTable::CheckExtent() const {
    const Parts& parts = Current();
    static_cast<void>(parts.rows.Pages());
    for (const auto& index : parts.layout.realIndexes)
        static_cast<void>(pages_.Read(index.root));
}

Value StoredTable::Decode(const RowReader& reader, std::size_t position) const {
    const ColumnLayout& column = Current().layout.columns[position];
    if (column.Type() == ColumnType::Boolean) return reader.Bit(column);
    const auto field = reader.Field(column);
    if (!field) return Null{};
    if (!column.IsLong()) return DecodeField(column, *field);
    Bytes data = ReadLongValue(pages_, *field);
    if (column.Type() == ColumnType::Memo) return DecodeText(data);
    return data;
}

Row StoredTable::DecodeRow(std::span<const std::uint8_t> bytes) const {
    const RowReader reader(bytes, Current().layout);
    Row row;
    row.reserve(definition_.columns.size());
    for (std::size_t i = 0; i < definition_.columns.size(); ++i)
        row.push_back(Decode(reader, i));
    return row;
}

void StoredTable::Scan(const std::function<void(RowId, Row&&)>& visit) const {
    Current().rows.ForEach(
        [&](RowId row, std::span<const std::uint8_t> bytes) { visit(row, DecodeRow(bytes)); });
}

void StoredTable::ScanColumns(std::span<const std::size_t> columns,
                              const Table::VisitColumns& visit) const {
    const Parts& parts = Current();
    std::vector<Value> values(columns.size());
    parts.rows.ForEach([&](RowId id, std::span<const std::uint8_t> bytes) {
        const RowReader reader(bytes, parts.layout);
        for (std::size_t i = 0; i < columns.size(); ++i)
            values[i] = Decode(reader, columns[i]);
        visit(id, values);
    });
}

Row StoredTable::Read(RowId row) const {
    const auto stored = Current().rows.Read(row);
    return DecodeRow(stored.bytes);
}

std::optional<std::vector<RowId>> StoredTable::FindByIndex(std::size_t column, const Value& value,
                                                           std::size_t most) {
    for (const auto& index : Current().indexes)
        if (index->Columns().front() == column) return index->RowsWith(value, most);
    return std::nullopt;
}

Value StoredTable::ReadColumn(RowId row, std::size_t column) const {
    const auto stored = Current().rows.Read(row);
    return Decode(RowReader(stored.bytes, Current().layout), column);
}

std::uint32_t StoredTable::RowCount() const {
    return Current().counters.Rows();
}

std::string StoredTable::IndexName(std::size_t realIndex) const {
    for (const auto& index : Current().layout.logicalIndexes) {
        if (index.real == realIndex) return index.name;
    }
    return "without a name";
}

}  // namespace jet::storage
