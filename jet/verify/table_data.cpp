#include "jet/verify/table_data.h"

#include <algorithm>

#include "jet/storage/format/values.h"
#include "jet/storage/index/index_key.h"
#include "jet/storage/index/index_page.h"

namespace jet::verify {

using storage::PageNumber;
using storage::RowId;

bool AllNull(const Shape& shape, const Index& index, const RowView& row) {
    return std::ranges::all_of(index.parts, [&](const IndexPart& part) {
        const Column& column = shape.columns[part.column];
        return column.type != ColumnType::Boolean && !row.IsSet(column);
    });
}

bool AnyNull(const Shape& shape, const Index& index, const RowView& row) {
    return std::ranges::any_of(index.parts, [&](const IndexPart& part) {
        const Column& column = shape.columns[part.column];
        return column.type != ColumnType::Boolean && !row.IsSet(column);
    });
}

TableData::TableData(const Shape& shape, Pages& pages, UsageMaps& maps, Findings& findings)
    : shape_(shape),
      pages_(pages),
      maps_(maps),
      findings_(findings),
      where_("table " + shape.name),
      wanted_(shape.indexes.size()) {
    for (const Column& column : shape.columns) {
        if (column.type == ColumnType::Boolean) continue;
        if (column.fixed && !column.autoNumber && column.size == column.length) {
            fixedEnd_ = std::max<std::size_t>(fixedEnd_, column.offset + column.length);
        } else {
            varying_.push_back(&column);
        }
        all_.push_back(&column);
    }
    std::size_t parts = 0;
    for (const Index& index : shape.indexes)
        parts += index.parts.size();
    lastKeys_.resize(parts);
}

void TableData::Check(bool countIsExact) {
    ClaimPages();
    ClaimLongPages();
    for (const PageNumber page : owned_)
        CheckPage(page);
    CheckMovedRows();
    findings_.Counts().rows += rows_.size();

    if (countIsExact && rows_.size() != shape_.rows)
        findings_.Fault(Where(), "the definition counts " + std::to_string(shape_.rows) +
                                     " rows, there are " + std::to_string(rows_.size()));
    if (greatestAutoNumber_ > shape_.lastAutoNumber)
        findings_.Fault(Where(), "the last auto-number is " +
                                     std::to_string(shape_.lastAutoNumber) + ", but a row has " +
                                     std::to_string(greatestAutoNumber_));
}

void TableData::ClaimPages() {
    for (const PageNumber page : maps_.Read(shape_.owned, Where() + " map of pages"))
        if (pages_.Claim(page, PageUse::Rows, Where())) owned_.push_back(page);
    for (const PageNumber page : maps_.Read(shape_.free, Where() + " map of pages with room"))
        if (!std::ranges::binary_search(owned_, page))
            findings_.Fault(Where(), "page " + std::to_string(page) +
                                         " is listed as having room, but is not of the table");
}

void TableData::ClaimLongPages() {
    constexpr std::uint32_t LongOwner = 0x4C41564C;  // "LVAL"
    for (const LongColumnMaps& maps : shape_.longMaps) {
        const std::string where = Where() + " long column " + std::to_string(maps.column);
        std::vector<PageNumber> owned;
        if (maps.owned) owned = maps_.Read(*maps.owned, where);
        for (const PageNumber page : owned) {
            if (!pages_.Claim(page, PageUse::LongValues, where)) continue;
            const Slots slots(pages_.Read(page));
            if (!slots.IsSound() || slots.Owner() != LongOwner)
                findings_.Fault(where, "page " + std::to_string(page) + " has no long values");
            else if (slots.FreeBytes() != slots.RoomLeft())
                findings_.Fault(where,
                                "page " + std::to_string(page) + " has a wrong free-space word");
        }
        if (!maps.free) continue;
        for (const PageNumber page : maps_.Read(*maps.free, where))
            if (!std::ranges::binary_search(owned, page))
                findings_.Fault(where, "page " + std::to_string(page) +
                                           " is listed as having room, but is not of the column");
    }
}

void TableData::CheckPage(PageNumber page) {
    const std::string where = Where() + " page " + std::to_string(page);
    const Slots slots(pages_.Read(page));
    if (!slots.IsSound()) {
        findings_.Fault(where, "this is no sound data page");
        return;
    }
    if (slots.Owner() != shape_.page) findings_.Fault(where, "the page names another owner");
    if (slots.FreeBytes() != slots.RoomLeft())
        findings_.Fault(where, "the free-space word is " + std::to_string(slots.FreeBytes()) +
                                   ", there are " + std::to_string(slots.RoomLeft()) + " bytes");
    for (std::size_t slot = 0; slot < slots.Count(); ++slot) {
        const RowId id{page, static_cast<std::uint8_t>(slot)};
        switch (slots.State(slot)) {
            case SlotState::Row:
                rows_.push_back(id);
                CheckRow(id, slots.Bytes(slot));
                break;
            case SlotState::Moved:
                if (slots.Bytes(slot).size() < 4) {
                    findings_.Fault(where, "row " + Place(id) + " has no room for its pointer");
                } else {
                    const RowId content = RowPointer(slots.Bytes(slot), 0);
                    if (!homes_.emplace(content, id).second)
                        findings_.Fault(where, "two rows have their content at " + Place(content));
                    rows_.push_back(id);
                }
                break;
            case SlotState::MovedRow:
                movedContents_.insert(id);
                break;
            case SlotState::Deleted:
                break;
        }
    }
}

void TableData::CheckMovedRows() {
    std::set<RowId> lost;
    for (const auto& [content, home] : homes_) {
        if (movedContents_.contains(content)) continue;
        findings_.Fault(Where(), "row " + Place(home) + " has its content at " + Place(content) +
                                     ", where none is");
        lost.insert(home);
    }
    if (!lost.empty()) std::erase_if(rows_, [&](RowId row) { return lost.contains(row); });
    for (const auto& [content, home] : homes_)
        if (!lost.contains(home)) CheckRow(home, Find(home).bytes);
    for (const RowId content : movedContents_)
        if (!homes_.contains(content))
            findings_.Fault(Where(), "content at " + Place(content) + " belongs to no row");
}

RowBytes TableData::Find(RowId row) {
    auto page = pages_.Read(row.page);
    const Slots slots(page);
    if (slots.State(row.slot) != SlotState::Moved) return {page, slots.Bytes(row.slot)};
    const RowId content = RowPointer(slots.Bytes(row.slot), 0);
    page = pages_.Read(content.page);
    return {page, Slots(page).Bytes(content.slot)};
}

void TableData::CheckRow(RowId id, std::span<const std::uint8_t> bytes) {
    const RowView row(bytes, shape_);
    if (!row.Fault().empty()) {
        findings_.Fault(Where() + " row " + Place(id), std::string(row.Fault()));
        return;
    }
    collecting_ = true;
    // Where there is room for all values of fixed size, nothing can be wrong with them.
    for (const Column* column : row.HasFixedPart(fixedEnd_) ? varying_ : all_) {
        const auto field = row.Field(*column);
        if (field) {
            CheckField(id, *column, *field);
            if (column->autoNumber) CheckAutoNumber(*column, *field);
        } else if (row.IsSet(*column)) {
            findings_.Fault(Where() + " row " + Place(id),
                            "column " + column->name + " has no room for its value");
        }
    }
    collecting_ = false;
    AddWanted(id, row);
}

void TableData::CheckAutoNumber(const Column& column, std::span<const std::uint8_t> bytes) {
    if (bytes.size() != column.size) return;
    greatestAutoNumber_ =
        std::max<std::int64_t>(greatestAutoNumber_, storage::Load<std::int32_t>(bytes, 0));
}

void TableData::AddWanted(RowId id, const RowView& row) {
    auto last = lastKeys_.begin();
    for (std::size_t i = 0; i < shape_.indexes.size(); ++i) {
        const Index& index = shape_.indexes[i];
        WantedEntries& wanted = wanted_[i];
        const auto lastOfIndex = last;
        last += static_cast<std::ptrdiff_t>(index.parts.size());
        wanted.hasNull = wanted.hasNull || (index.required && AnyNull(shape_, index, row));
        if (index.ignoresNulls && AllNull(shape_, index, row)) continue;
        entry_.clear();
        for (std::size_t part = 0; part < index.parts.size() && index.keysAreKnown; ++part)
            AppendWantedKey(row, index.parts[part], lastOfIndex[static_cast<std::ptrdiff_t>(part)]);
        storage::AppendRow(entry_, id);
        wanted.entries.Add(entry_);
    }
}

/// Rows that lie beside each other often have the same texts: artist, album.
void TableData::AppendWantedKey(const RowView& row, const IndexPart& part, LastKey& last) {
    const Column& column = shape_.columns[part.column];
    const auto field = column.type == ColumnType::Text ? row.Field(column) : std::nullopt;
    if (field && !last.key.empty() && std::ranges::equal(*field, last.field)) {
        entry_.insert(entry_.end(), last.key.begin(), last.key.end());
        return;
    }
    const auto start = static_cast<std::ptrdiff_t>(entry_.size());
    // A value that makes no sense has been reported already. Its index will not agree.
    AppendKey(entry_, row, part);
    if (!field) return;
    last.field.assign(field->begin(), field->end());
    last.key.assign(entry_.begin() + start, entry_.end());
}

bool TableData::AppendKey(Bytes& key, const RowView& row, const IndexPart& part) {
    const Column& column = shape_.columns[part.column];
    if (column.type == ColumnType::Boolean) {
        storage::AppendKey(key, row.IsSet(column), column.type, 0, part.ascending);
        return true;
    }
    const auto field = row.Field(column);
    if (!field) {
        key.push_back(storage::NullKey(part.ascending));
        return true;
    }
    if (column.IsLong()) {
        std::string fault;
        const auto content = ReadLongValue(column, *field, fault);
        if (content)
            storage::AppendStoredKey(key, *content, column.type, column.scale, part.ascending);
        return content.has_value();
    }
    if (column.size != 0 && field->size() != column.size) return false;
    storage::AppendStoredKey(key, *field, column.type, column.scale, part.ascending);
    return true;
}

}  // namespace jet::verify
