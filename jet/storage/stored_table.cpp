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
      counters(pages, definition),
      draft(layout) {
    for (std::size_t i = 0; i < layout.realIndexes.size(); ++i) {
        indexes.push_back(std::make_unique<TableIndex>(pages, layout, i));
    }
}

StoredTable::StoredTable(Pager& pages, std::string name, PageNumber definition,
                         std::span<const std::string> requiredColumns)
    : pages_(pages), page_(definition), file_(pages.Path().string()) {
    definition_.name = std::move(name);
    ReadDefinition(requiredColumns);
    pages_.Add(*this);
}

void StoredTable::ReadDefinition(std::span<const std::string> requiredColumns) {
    parts_.reset();
    definition_ = DefinitionOf(Current().layout, std::string(definition_.name), requiredColumns);
    readOnlyReason_ = FindReadOnlyReason();
    waiting_.assign(Current().indexes.size(), EntryBatch());
    newKeys_.assign(waiting_.size(), IndexKey());
}

std::optional<std::string> StoredTable::FindReadOnlyReason() const {
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
    Value value;
    Decode(reader, Current().layout.columns[position], value);
    return value;
}

void StoredTable::Decode(const RowReader& reader, const ColumnLayout& column, Value& value) const {
    if (column.Type() == ColumnType::Boolean) {
        value = reader.Bit(column);
        return;
    }
    const auto field = reader.Field(column);
    if (!field) {
        value = Null{};
    } else if (!column.IsLong()) {
        DecodeField(column, *field, value);
    } else if (column.Type() != ColumnType::Memo) {
        value = ReadLongValue(pages_, *field);
    } else if (const auto inRow = DataInRow(*field)) {
        DecodeText(*inRow, value);
    } else {
        DecodeText(ReadLongValue(pages_, *field), value);
    }
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
    NamingFile(file_, [&] {
        Current().rows.ForEach(
            [&](RowId row, std::span<const std::uint8_t> bytes) { visit(row, DecodeRow(bytes)); });
    });
}

void StoredTable::ScanColumns(std::span<const std::size_t> columns,
                              const VisitColumns& visit) const {
    NamingFile(file_, [&] {
        const Parts& parts = Current();
        std::vector<const ColumnLayout*> layouts;
        for (const std::size_t column : columns)
            layouts.push_back(&parts.layout.columns[column]);
        std::vector<Value> values(columns.size());
        parts.rows.ForEach([&](RowId id, std::span<const std::uint8_t> bytes) {
            const RowReader reader(bytes, parts.layout);
            for (std::size_t i = 0; i < layouts.size(); ++i)
                Decode(reader, *layouts[i], values[i]);
            visit(id, values);
        });
    });
}

Row StoredTable::Read(RowId row) const {
    return NamingFile(file_, [&] {
        const auto stored = Current().rows.Read(row);
        return DecodeRow(stored.bytes);
    });
}

std::optional<std::vector<RowId>> StoredTable::FindByIndex(std::size_t column, const Value& value,
                                                           std::size_t most) {
    return NamingFile(file_, [&]() -> std::optional<std::vector<RowId>> {
        for (std::size_t i = 0; i < Current().indexes.size(); ++i) {
            if (Current().indexes[i]->Columns().front() != column) continue;
            PutWaitingEntries(i);
            return Current().indexes[i]->RowsWith(value, most);
        }
        return std::nullopt;
    });
}

Value StoredTable::ReadColumn(RowId row, std::size_t column) const {
    const auto stored = Current().rows.Read(row);
    return Decode(RowReader(stored.bytes, Current().layout), column);
}

std::uint32_t StoredTable::RowCount() const {
    return NamingFile(file_, [&] { return Current().counters.Rows(); });
}

std::string StoredTable::IndexName(std::size_t realIndex) const {
    for (const auto& index : Current().layout.logicalIndexes) {
        if (index.real == realIndex) return index.name;
    }
    return "without a name";
}

}  // namespace jet::storage
