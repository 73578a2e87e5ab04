#include "jet/storage/schema_changes.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "jet/error.h"
#include "jet/storage/bytes.h"
#include "jet/storage/creation.h"
#include "jet/storage/data_page.h"
#include "jet/storage/definition_format.h"
#include "jet/storage/definitions.h"
#include "jet/storage/format/values.h"
#include "jet/storage/index/entry_batch.h"
#include "jet/storage/index/index_key.h"
#include "jet/storage/stored_table.h"
#include "jet/storage/table_index.h"
#include "jet/storage/usage_map.h"

namespace jet::storage {

using definition_format::HeaderSize;
using definition_format::LengthOffset;
using definition_format::LogicalCountOffset;
using definition_format::LogicalIndexSize;
using definition_format::LogicalRealOffset;
using definition_format::RealCountOffset;
using definition_format::RealIndexSize;
using definition_format::StatisticsSize;

namespace {

/// A definition cut where indexes are told of; all else stays byte for byte.
struct CutDefinition {
    Bytes header;
    std::vector<Bytes> statistics;  ///< of the real indexes
    Bytes columns;                  ///< with their names
    std::vector<Bytes> real, logical, names;
    Bytes longColumns;
};

CutDefinition Cut(std::span<const std::uint8_t> bytes, const TableLayout& layout) {
    const std::string what = "a table definition";
    ByteReader reader(bytes, what);
    const auto take = [&reader](std::size_t size) {
        const auto part = reader.Take(size);
        return Bytes(part.begin(), part.end());
    };
    const auto name = [&] {
        Bytes whole = take(2);
        Append(whole, reader.Take(Load<std::uint16_t>(whole, 0)));
        return whole;
    };
    CutDefinition cut;
    cut.header = take(HeaderSize);
    for (std::size_t i = 0; i < layout.realIndexes.size(); ++i)
        cut.statistics.push_back(take(StatisticsSize));
    cut.columns = take(layout.columns.size() * definition_format::ColumnSize);
    for (std::size_t i = 0; i < layout.columns.size(); ++i)
        Append(cut.columns, std::span<const std::uint8_t>(name()));
    for (std::size_t i = 0; i < layout.realIndexes.size(); ++i)
        cut.real.push_back(take(RealIndexSize));
    for (std::size_t i = 0; i < layout.logicalIndexes.size(); ++i)
        cut.logical.push_back(take(LogicalIndexSize));
    for (std::size_t i = 0; i < layout.logicalIndexes.size(); ++i)
        cut.names.push_back(name());
    cut.longColumns = take(reader.Left());
    return cut;
}

Bytes Joined(CutDefinition cut) {
    Store(std::span(cut.header), LogicalCountOffset,
          static_cast<std::uint32_t>(cut.logical.size()));
    Store(std::span(cut.header), RealCountOffset, static_cast<std::uint32_t>(cut.real.size()));
    Bytes bytes = std::move(cut.header);
    const auto add = [&bytes](const std::vector<Bytes>& parts) {
        for (const Bytes& part : parts)
            Append(bytes, std::span(part));
    };
    add(cut.statistics);
    Append(bytes, std::span<const std::uint8_t>(cut.columns));
    add(cut.real);
    add(cut.logical);
    add(cut.names);
    Append(bytes, std::span<const std::uint8_t>(cut.longColumns));
    Store(std::span(bytes), LengthOffset, static_cast<std::uint32_t>(bytes.size()));
    return bytes;
}

/// A usage map goes: its bitmap pages, and its row, with the page when that was the last one.
void FreeMap(Pager& pages, RowId row) {
    if (row.page == 0) return;
    const MapRow map(pages, row);
    if (!map.IsInline()) {
        for (std::size_t i = 0; i < map.BitmapSlots(); ++i)
            if (const PageNumber bitmap = map.BitmapPage(i)) pages.Free(bitmap);
    }
    Page& page = pages.Modify(row.page);
    ResizeRow(page, row.page, row.slot, 0, RowKind::Deleted);
    const DataPageView view(page, row.page);
    for (std::size_t slot = 0; slot < view.SlotCount(); ++slot)
        if (!view.At(slot).IsDeleted()) return;
    pages.Free(row.page);
}

void FreePagesOf(Pager& pages, RowId map) {
    if (map.page == 0) return;
    for (const PageNumber page : UsageMap(pages, map).Pages())
        pages.Free(page);
}

/// The keys of all rows in an index that is still empty, checked against its rules.
EntryBatch EntriesOf(Pager& pages, const TableLayout& layout, const TableDefinition& definition) {
    const IndexDefinition& wanted = definition.indexes.back();
    const auto refuse = [&](ErrorKind kind, const std::string& reason) {
        throw Error(kind, "Index " + wanted.name + " of table " + definition.name +
                              " cannot be made: " + reason + ".");
    };
    const TableIndex index(pages, layout, layout.realIndexes.size() - 1);
    const StoredTable table(pages, definition.name, layout.Page(), {});
    EntryBatch batch;
    Row row(definition.columns.size());
    table.ScanColumns(index.Columns(), [&](RowId id, std::span<Value> values) {
        for (std::size_t i = 0; i < values.size(); ++i)
            row[index.Columns()[i]] = values[i];
        const IndexKey key = index.KeyOf(row);
        if (key.anyNull && index.RefusesNulls())
            refuse(ErrorKind::Required, "a row has no value there");
        CheckLength(key.bytes);
        if (!index.Lists(key)) return;
        batch.Reserve(key.bytes);
        batch.Add(key.bytes, id);
    });
    batch.Sort();
    if (!wanted.unique && !wanted.primary) return batch;
    const auto keyAt = [&batch](std::size_t i) {
        return batch.At(i).first(batch.At(i).size() - EntryRowSize);
    };
    const Bytes nulls = index.KeyOf(Row(definition.columns.size())).bytes;
    for (std::size_t i = 1; i < batch.Count(); ++i) {
        if (std::ranges::equal(keyAt(i - 1), keyAt(i)) && !std::ranges::equal(keyAt(i), nulls))
            refuse(ErrorKind::Duplicate, "two rows have the same value there");
    }
    return batch;
}

Bytes NameBytes(const std::string& name) {
    Bytes bytes;
    const std::u16string units = ToUtf16(name);
    Append(bytes, static_cast<std::uint16_t>(units.size() * 2));
    for (const char16_t unit : units)
        Append(bytes, unit);
    return bytes;
}

/// Puts the named index where its name stands in the order of names.
void AddLogical(CutDefinition& cut, const TableLayout& layout, const LogicalIndexLayout& added) {
    std::size_t place = 0;
    while (place < layout.logicalIndexes.size() &&
           CompareTexts(layout.logicalIndexes[place].name, added.name) < 0)
        ++place;
    const auto at = static_cast<std::ptrdiff_t>(place);
    cut.logical.insert(cut.logical.begin() + at, LogicalIndexBytes(added));
    cut.names.insert(cut.names.begin() + at, NameBytes(added.name));
}

std::uint32_t FreeNumber(const TableLayout& layout) {
    std::uint32_t number = 0;
    for (const auto& index : layout.logicalIndexes)
        number = std::max(number, index.number + 1);
    return number;
}

}  // namespace

void FreeTable(Pager& pages, PageNumber table) {
    const TableLayout layout = ReadTableLayout(pages, table);
    FreePagesOf(pages, layout.owned);
    for (const auto& index : layout.realIndexes)
        FreePagesOf(pages, index.map);
    for (const auto& column : layout.longColumns)
        FreePagesOf(pages, column.owned);
    FreeMap(pages, layout.owned);
    FreeMap(pages, layout.free);
    for (const auto& index : layout.realIndexes)
        FreeMap(pages, index.map);
    for (const auto& column : layout.longColumns) {
        FreeMap(pages, column.owned);
        FreeMap(pages, column.free);
    }
    for (const PageNumber page : layout.pages)
        pages.Free(page);
}

void RequireNoRelationship(Pager& pages, PageNumber table, std::string_view name) {
    for (const auto& index : ReadTableLayout(pages, table).logicalIndexes) {
        if (index.kind != LogicalIndexLayout::Kind::Foreign) continue;
        throw Error(ErrorKind::NotSupported, "Table " + std::string(name) +
                                                 " takes part in a relationship; remove that first "
                                                 "with the program that made it.");
    }
}

void AddIndex(Pager& pages, PageNumber table, const TableDefinition& wanted) {
    CheckLastIndex(wanted);
    TableLayout layout = ReadTableLayout(pages, table);
    CutDefinition cut = Cut(ReadDefinition(pages, table), layout);
    const IndexDefinition& definition = wanted.indexes.back();
    RealIndexLayout real = RealIndexOf(definition);
    for (auto& part : real.parts)
        part.column = layout.columns.at(part.column).number;
    LogicalIndexLayout logical{.name = definition.name,
                               .number = FreeNumber(layout),
                               .real = 0,
                               .kind = definition.primary ? LogicalIndexLayout::Kind::Primary
                                                          : LogicalIndexLayout::Kind::Plain};
    const auto same = std::ranges::find_if(layout.realIndexes, [&](const auto& other) {
        return other.parts == real.parts && other.flags == real.flags;
    });
    logical.real = static_cast<std::uint32_t>(same - layout.realIndexes.begin());
    const bool isNew = same == layout.realIndexes.end();
    if (isNew) {
        MapPages maps(pages, layout.owned.page);
        MakeIndex(pages, maps, table, real);
        layout.realIndexes.push_back(real);
        cut.statistics.emplace_back(StatisticsSize);
        cut.real.push_back(RealIndexBytes(real));
    }
    EntryBatch entries;
    if (isNew) entries = EntriesOf(pages, layout, wanted);
    AddLogical(cut, layout, logical);
    WriteDefinition(pages, layout.pages, Joined(std::move(cut)));
    if (!isNew) return;
    TableIndex index(pages, layout, layout.realIndexes.size() - 1);
    TableCounters counters(pages, table);
    while (!entries.IsEmpty()) {
        const auto inserted = index.Insert(entries);
        counters.CountNewKeys(layout.realIndexes.size() - 1, inserted.newKeys);
        entries.DropFirst(inserted.entries);
    }
}

void RemoveIndex(Pager& pages, PageNumber table, std::string_view tableName,
                 std::string_view index) {
    TableLayout layout = ReadTableLayout(pages, table);
    const auto found = std::ranges::find_if(layout.logicalIndexes, [&](const auto& logical) {
        return CompareTexts(logical.name, index) == 0;
    });
    if (found == layout.logicalIndexes.end()) {
        throw Error(ErrorKind::NotFound, "Table " + std::string(tableName) + " has no index " +
                                             std::string(index) + ".");
    }
    RequireNoRelationship(pages, table, tableName);
    CutDefinition cut = Cut(ReadDefinition(pages, table), layout);
    const auto at = found - layout.logicalIndexes.begin();
    const std::uint32_t real = found->real;
    cut.logical.erase(cut.logical.begin() + at);
    cut.names.erase(cut.names.begin() + at);
    layout.logicalIndexes.erase(found);
    const bool shared = std::ranges::any_of(
        layout.logicalIndexes, [real](const auto& other) { return other.real == real; });
    if (!shared) {
        const auto place = static_cast<std::ptrdiff_t>(real);
        cut.statistics.erase(cut.statistics.begin() + place);
        cut.real.erase(cut.real.begin() + place);
        for (Bytes& logical : cut.logical) {
            const auto uses = Load<std::uint32_t>(logical, LogicalRealOffset);
            if (uses > real) Store(std::span(logical), LogicalRealOffset, uses - 1);
        }
        FreePagesOf(pages, layout.realIndexes[real].map);
        FreeMap(pages, layout.realIndexes[real].map);
    }
    WriteDefinition(pages, layout.pages, Joined(std::move(cut)));
}

}  // namespace jet::storage
