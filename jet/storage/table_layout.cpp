#include "jet/storage/table_layout.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "jet/storage/bytes.h"
#include "jet/storage/damaged.h"
#include "jet/storage/definition_format.h"
#include "jet/storage/format/values.h"

namespace jet::storage {

using definition_format::AscendingFlag;
using definition_format::CompressedFlag;
using definition_format::HeaderSize;
using definition_format::IndexParts;
using definition_format::LengthOffset;
using definition_format::NextPageOffset;
using definition_format::NoColumn;
using definition_format::PageHeaderSize;
using definition_format::StatisticsSize;
using definition_format::SystemTable;
using definition_format::TableTypeOffset;

namespace {

/// A definition of 255 columns and 32 indexes with the longest names stays far below this.
constexpr std::size_t LargestDefinition = std::size_t{1} << 18;

Bytes ReadBytes(PageStore& pages, PageNumber first, TableLayout& layout) {
    Bytes bytes;
    std::size_t length = HeaderSize;
    for (PageNumber next = first; bytes.size() < length;) {
        const auto page = pages.Read(next);
        if ((*page)[0] != static_cast<std::uint8_t>(PageType::Definition)) {
            ThrowDamaged("page " + std::to_string(next) + " is not a table definition");
        }
        layout.pages.push_back(next);
        if (bytes.empty()) {
            bytes.assign(page->begin(), page->end());
            length = Load<std::uint32_t>(bytes, LengthOffset);
            if (length < HeaderSize || length > LargestDefinition) {
                ThrowDamaged("the table definition on page " + std::to_string(first) +
                             " has an impossible length");
            }
        } else {
            Append(bytes, std::span(*page).subspan(PageHeaderSize));
        }
        next = Load<PageNumber>(*page, NextPageOffset);
    }
    bytes.resize(length);
    return bytes;
}

std::string ReadName(ByteReader& reader) {
    const auto bytes = reader.Take(reader.Next<std::uint16_t>());
    std::u16string name(bytes.size() / 2, u'\0');
    for (std::size_t i = 0; i < name.size(); ++i)
        name[i] = Load<char16_t>(bytes, i * 2);
    return ToUtf8(name);
}

ColumnLayout ReadColumn(ByteReader& reader) {
    ColumnLayout column;
    column.typeCode = reader.Next<std::uint8_t>();
    reader.Skip(4);
    column.number = reader.Next<std::uint16_t>();
    column.slot = reader.Next<std::uint16_t>();
    column.ordinal = reader.Next<std::uint16_t>();
    const auto typeData = reader.Take(4);
    if (column.Type() == ColumnType::Decimal) {
        column.precision = typeData[0];
        column.scale = typeData[1];
    } else {
        column.sortOrder = Load<std::uint16_t>(typeData, 0);
        column.sortVersion = typeData[3];
    }
    column.flags = reader.Next<std::uint8_t>();
    column.fixed = (column.flags & ColumnLayout::FixedFlag) != 0;
    column.compressed = (reader.Next<std::uint8_t>() & CompressedFlag) != 0;
    reader.Skip(4);
    column.fixedOffset = reader.Next<std::uint16_t>();
    column.length = reader.Next<std::uint16_t>();
    return column;
}

RealIndexLayout ReadRealIndex(ByteReader& reader) {
    RealIndexLayout index;
    reader.Skip(4);
    for (std::size_t i = 0; i < IndexParts; ++i) {
        const auto column = reader.Next<std::uint16_t>();
        const auto order = reader.Next<std::uint8_t>();
        if (column != NoColumn) index.parts.push_back({column, (order & AscendingFlag) != 0});
    }
    index.map = RowIdOf(reader.Next<std::uint32_t>());
    index.root = reader.Next<PageNumber>();
    reader.Skip(4);
    index.flags = reader.Next<std::uint8_t>();
    reader.Skip(5);
    return index;
}

LogicalIndexLayout ReadLogicalIndex(ByteReader& reader) {
    LogicalIndexLayout index;
    reader.Skip(4);
    index.number = reader.Next<std::uint32_t>();
    index.real = reader.Next<std::uint32_t>();
    reader.Skip(11);
    const auto kind = reader.Next<std::uint8_t>();
    index.kind = kind <= static_cast<std::uint8_t>(LogicalIndexLayout::Kind::Foreign)
                     ? static_cast<LogicalIndexLayout::Kind>(kind)
                     : LogicalIndexLayout::Kind::Plain;
    reader.Skip(4);
    return index;
}

void ReadLongColumns(ByteReader& reader, TableLayout& layout) {
    layout.longColumnsOffset = reader.Offset();
    for (auto column = reader.Next<std::uint16_t>(); column != NoColumn;
         column = reader.Next<std::uint16_t>()) {
        const auto owned = RowIdOf(reader.Next<std::uint32_t>());
        const auto free = RowIdOf(reader.Next<std::uint32_t>());
        layout.longColumns.push_back({column, owned, free});
    }
}

void CheckReferences(const TableLayout& layout, const std::string& what) {
    for (const auto& column : layout.columns) {
        if (column.number >= layout.columnsEver) ThrowDamaged(what + " has a wrong column number");
    }
    for (std::size_t i = 1; i < layout.columns.size(); ++i) {
        if (layout.columns[i].number == layout.columns[i - 1].number) {
            ThrowDamaged(what + " has two columns of one number");
        }
    }
    for (const auto& index : layout.realIndexes) {
        for (const auto& part : index.parts) {
            if (layout.Position(part.column) == layout.columns.size()) {
                ThrowDamaged(what + " has an index on a column that does not exist");
            }
        }
    }
    for (const auto& index : layout.logicalIndexes) {
        if (index.real >= layout.realIndexes.size()) {
            ThrowDamaged(what + " has a named index without data");
        }
    }
}

}  // namespace

std::size_t ColumnLayout::StoredSize() const {
    const std::size_t size = IsKnownType() ? FixedSize(Type()) : 0;
    return size != 0 ? size : length;
}

std::size_t TableLayout::Position(std::uint16_t number) const {
    const auto found = std::find_if(columns.begin(), columns.end(), [number](const auto& column) {
        return column.number == number;
    });
    return static_cast<std::size_t>(found - columns.begin());
}

std::size_t TableLayout::FixedPartSize() const {
    std::size_t size = 0;
    for (const auto& column : columns) {
        if (!column.fixed || column.Type() == ColumnType::Boolean) continue;
        size = std::max<std::size_t>(size, column.fixedOffset + column.StoredSize());
    }
    return size;
}

Bytes ReadDefinition(PageStore& pages, PageNumber page) {
    TableLayout layout;
    return ReadBytes(pages, page, layout);
}

TableLayout ReadTableLayout(PageStore& pages, PageNumber page) {
    const std::string what = "the table definition on page " + std::to_string(page);
    TableLayout layout;
    const Bytes bytes = ReadBytes(pages, page, layout);
    ByteReader reader(bytes, what);
    reader.Skip(TableTypeOffset);
    layout.isSystem = reader.Next<std::uint8_t>() == SystemTable;
    layout.columnsEver = reader.Next<std::uint16_t>();
    layout.variableColumnsEver = reader.Next<std::uint16_t>();
    const auto columnCount = reader.Next<std::uint16_t>();
    const auto logicalCount = reader.Next<std::uint32_t>();
    const auto realCount = reader.Next<std::uint32_t>();
    layout.owned = RowIdOf(reader.Next<std::uint32_t>());
    layout.free = RowIdOf(reader.Next<std::uint32_t>());
    // The statistics lie in the first page; their counters are changed there.
    if (realCount > (PageSize - HeaderSize) / StatisticsSize) {
        ThrowDamaged(what + " claims " + std::to_string(realCount) + " indexes");
    }
    reader.Skip(realCount * StatisticsSize);
    for (unsigned i = 0; i < columnCount; ++i)
        layout.columns.push_back(ReadColumn(reader));
    for (auto& column : layout.columns)
        column.name = ReadName(reader);
    for (unsigned i = 0; i < realCount; ++i)
        layout.realIndexes.push_back(ReadRealIndex(reader));
    if (logicalCount > reader.Left()) {
        ThrowDamaged(what + " claims " + std::to_string(logicalCount) + " named indexes");
    }
    for (unsigned i = 0; i < logicalCount; ++i) {
        layout.logicalIndexes.push_back(ReadLogicalIndex(reader));
    }
    for (auto& index : layout.logicalIndexes)
        index.name = ReadName(reader);
    ReadLongColumns(reader, layout);
    std::sort(layout.columns.begin(), layout.columns.end(),
              [](const auto& a, const auto& b) { return a.number < b.number; });
    CheckReferences(layout, what);
    return layout;
}

}  // namespace jet::storage
