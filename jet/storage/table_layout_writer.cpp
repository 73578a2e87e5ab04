#include <algorithm>
#include <span>
#include <string>

#include "jet/storage/bytes.h"
#include "jet/storage/definition_format.h"
#include "jet/storage/format/values.h"
#include "jet/storage/table_layout.h"

namespace jet::storage {

using definition_format::AscendingFlag;
using definition_format::AutoNumberOffset;
using definition_format::AutoNumberStepOffset;
using definition_format::CompressedFlag;
using definition_format::DistinctKeysOffset;
using definition_format::FreeBytesOffset;
using definition_format::HeaderSize;
using definition_format::IndexParts;
using definition_format::LengthOffset;
using definition_format::LongColumnSize;
using definition_format::Marker;
using definition_format::NextPageOffset;
using definition_format::NoCascade;
using definition_format::NoColumn;
using definition_format::NoIndex;
using definition_format::PageHeaderSize;
using definition_format::RealIndexMarker;
using definition_format::RowCountOffset;
using definition_format::StatisticsSize;
using definition_format::SystemTable;
using definition_format::TableTypeOffset;
using definition_format::UserTable;

namespace {

void AppendName(Bytes& bytes, const std::string& name) {
    const std::u16string units = ToUtf16(name);
    Append(bytes, static_cast<std::uint16_t>(units.size() * 2));
    for (const char16_t unit : units)
        Append(bytes, unit);
}

void AppendColumn(Bytes& bytes, const ColumnLayout& column) {
    Append(bytes, column.typeCode);
    Append(bytes, Marker);
    Append(bytes, column.number);
    Append(bytes, column.slot);
    Append(bytes, column.ordinal);
    if (column.Type() == ColumnType::Decimal) {
        Append(bytes, column.precision);
        Append(bytes, column.scale);
        Append(bytes, std::uint16_t{0});
    } else {
        Append(bytes, column.sortOrder);
        Append(bytes, std::uint8_t{0});
        Append(bytes, column.sortVersion);
    }
    Append(bytes, column.flags);
    Append(bytes, column.compressed ? CompressedFlag : std::uint8_t{0});
    AppendZeros(bytes, 4);
    Append(bytes, column.fixedOffset);
    Append(bytes, column.length);
}

void AppendRealIndex(Bytes& bytes, const RealIndexLayout& index) {
    Append(bytes, RealIndexMarker);
    for (std::size_t i = 0; i < IndexParts; ++i) {
        const bool used = i < index.parts.size();
        Append(bytes, used ? index.parts[i].column : NoColumn);
        Append(bytes, used && index.parts[i].ascending ? AscendingFlag : std::uint8_t{0});
    }
    Append(bytes, PointerTo(index.map));
    Append(bytes, index.root);
    AppendZeros(bytes, 4);
    Append(bytes, index.flags);
    AppendZeros(bytes, 5);
}

void AppendLogicalIndex(Bytes& bytes, const LogicalIndexLayout& index) {
    Append(bytes, Marker);
    Append(bytes, index.number);
    Append(bytes, index.real);
    Append(bytes, std::uint8_t{0});
    Append(bytes, NoIndex);
    AppendZeros(bytes, 4);
    Append(bytes, NoCascade);
    Append(bytes, NoCascade);
    Append(bytes, static_cast<std::uint8_t>(index.kind));
    AppendZeros(bytes, 4);
}

Bytes Definition(TableLayout& layout) {
    Bytes bytes;
    AppendZeros(bytes, LengthOffset + 4);
    Append(bytes, Marker);
    AppendZeros(bytes, AutoNumberStepOffset - bytes.size());
    Append(bytes, std::uint32_t{1});
    AppendZeros(bytes, TableTypeOffset - bytes.size());
    Append(bytes, layout.isSystem ? SystemTable : UserTable);
    Append(bytes, layout.columnsEver);
    Append(bytes, layout.variableColumnsEver);
    Append(bytes, static_cast<std::uint16_t>(layout.columns.size()));
    Append(bytes, static_cast<std::uint32_t>(layout.logicalIndexes.size()));
    Append(bytes, static_cast<std::uint32_t>(layout.realIndexes.size()));
    Append(bytes, PointerTo(layout.owned));
    Append(bytes, PointerTo(layout.free));
    AppendZeros(bytes, layout.realIndexes.size() * StatisticsSize);
    for (const auto& column : layout.columns)
        AppendColumn(bytes, column);
    for (const auto& column : layout.columns)
        AppendName(bytes, column.name);
    for (const auto& index : layout.realIndexes)
        AppendRealIndex(bytes, index);
    for (const auto& index : layout.logicalIndexes)
        AppendLogicalIndex(bytes, index);
    for (const auto& index : layout.logicalIndexes)
        AppendName(bytes, index.name);
    layout.longColumnsOffset = bytes.size();
    for (const auto& column : layout.longColumns) {
        Append(bytes, column.column);
        Append(bytes, PointerTo(column.owned));
        Append(bytes, PointerTo(column.free));
    }
    Append(bytes, NoColumn);
    Store(std::span(bytes), LengthOffset, static_cast<std::uint32_t>(bytes.size()));
    return bytes;
}

/// The definition's first page gives all its bytes, each further page those behind its header.
constexpr std::size_t BytesPerPage = PageSize - PageHeaderSize;

void StoreBytes(PageStore& pages, const TableLayout& layout, std::size_t offset,
                std::span<const std::uint8_t> bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i, ++offset) {
        const std::size_t page = offset < PageSize ? 0 : (offset - PageHeaderSize) / BytesPerPage;
        pages.Modify(layout.pages.at(page))[offset - page * BytesPerPage] = bytes[i];
    }
}

}  // namespace

Bytes RealIndexBytes(const RealIndexLayout& index) {
    Bytes bytes;
    AppendRealIndex(bytes, index);
    return bytes;
}

Bytes LogicalIndexBytes(const LogicalIndexLayout& index) {
    Bytes bytes;
    AppendLogicalIndex(bytes, index);
    return bytes;
}

void WriteTableLayout(PageStore& pages, TableLayout& layout) {
    WriteDefinition(pages, layout.pages, Definition(layout));
}

void WriteDefinition(PageStore& pages, std::vector<PageNumber>& places,
                     std::span<const std::uint8_t> bytes) {
    const std::size_t content = bytes.size() - PageHeaderSize;
    const std::size_t pageCount = (content + BytesPerPage - 1) / BytesPerPage;
    while (places.size() < pageCount)
        places.push_back(pages.Allocate());
    for (; places.size() > pageCount; places.pop_back())
        pages.Free(places.back());
    for (std::size_t i = 0; i < pageCount; ++i) {
        Page& page = pages.Modify(places[i]);
        const std::size_t start = i * BytesPerPage;
        const std::size_t size = std::min(BytesPerPage, content - start);
        const bool last = i + 1 == pageCount;
        page.fill(0);
        page[0] = static_cast<std::uint8_t>(PageType::Definition);
        page[1] = 1;
        const std::size_t left = BytesPerPage - size;
        Store(
            std::span(page), FreeBytesOffset,
            static_cast<std::uint16_t>(last && left > PageHeaderSize ? left - PageHeaderSize : 0));
        Store(std::span(page), NextPageOffset, last ? PageNumber{0} : places[i + 1]);
        const auto part = bytes.subspan(PageHeaderSize + start, size);
        std::copy(part.begin(), part.end(), page.begin() + PageHeaderSize);
    }
}

void StoreLongColumnMaps(PageStore& pages, const TableLayout& layout, std::size_t longColumn) {
    const LongColumnLayout& maps = layout.longColumns.at(longColumn);
    Bytes bytes;
    Append(bytes, PointerTo(maps.owned));
    Append(bytes, PointerTo(maps.free));
    StoreBytes(pages, layout,
               layout.longColumnsOffset + longColumn * LongColumnSize + sizeof(maps.column), bytes);
}

std::uint32_t TableCounters::Rows() const {
    return Load<std::uint32_t>(*pages_.Read(definition_), RowCountOffset);
}

void TableCounters::SetRows(std::uint32_t count) {
    Store(std::span(pages_.Modify(definition_)), RowCountOffset, count);
}

std::int32_t TableCounters::AutoNumber() const {
    return Load<std::int32_t>(*pages_.Read(definition_), AutoNumberOffset);
}

std::int32_t TableCounters::AutoNumberStep() const {
    const auto step = Load<std::int32_t>(*pages_.Read(definition_), AutoNumberStepOffset);
    return step == 0 ? 1 : step;
}

void TableCounters::SetAutoNumber(std::int32_t value) {
    Store(std::span(pages_.Modify(definition_)), AutoNumberOffset, value);
}

void TableCounters::SetAutoNumber(std::int32_t value, std::int32_t step) {
    SetAutoNumber(value);
    Store(std::span(pages_.Modify(definition_)), AutoNumberStepOffset, step);
}

void TableCounters::CountNewKeys(std::size_t realIndex, std::size_t count) {
    if (count == 0) return;
    Page& page = pages_.Modify(definition_);
    const std::size_t offset = HeaderSize + realIndex * StatisticsSize + DistinctKeysOffset;
    Store(std::span(page), offset,
          Load<std::uint32_t>(page, offset) + static_cast<std::uint32_t>(count));
}

}  // namespace jet::storage
