#include "jet/storage/row_pages.h"

#include <algorithm>
#include <string>

#include "jet/storage/bytes.h"
#include "jet/storage/damaged.h"

namespace jet::storage {

namespace {

/// Pages with less room than this leave the free map: hardly any row would fit.
constexpr std::size_t LeastUsefulRoom = 48;

}  // namespace

std::shared_ptr<const Page> RowPages::Read(PageNumber number) const {
    auto page = pages_.Read(number);
    if (DataPageView(*page, number).Owner() != owner_) {
        ThrowDamaged("page " + std::to_string(number) + " belongs to something else");
    }
    return page;
}

Page& RowPages::Modify(PageNumber page) {
    static_cast<void>(Read(page));
    return pages_.Modify(page);
}

RowId RowPages::Add(std::span<const std::uint8_t> row, RowKind kind) {
    return AddTo(PageWithRoom(row.size()), row, kind);
}

RowId RowPages::Append(std::span<const std::uint8_t> row, RowKind kind) {
    LearnRoom();
    if (const auto pages = last_ ? std::vector<PageNumber>() : Pages(); !pages.empty())
        last_ = pages.back();
    if (!last_ || DataPageView(*Read(*last_), *last_).RoomForNew() < row.size()) last_ = NewPage();
    return AddTo(*last_, row, kind);
}

RowId RowPages::AddTo(PageNumber number, std::span<const std::uint8_t> row, RowKind kind) {
    Page& page = Modify(number);
    const std::uint8_t slot = AddRow(page, number, row.size(), kind);
    const Slot place = DataPageView(page, number).At(slot);
    std::copy(row.begin(), row.end(), page.begin() + static_cast<std::ptrdiff_t>(place.start));
    NoteRoom(number, false);
    return {number, slot};
}

bool RowPages::Fits(RowId row, std::size_t size) const {
    return DataPageView(*Read(row.page), row.page).RoomFor(row.slot) >= size;
}

void RowPages::Replace(RowId row, std::span<const std::uint8_t> content, RowKind kind) {
    Page& page = Modify(row.page);
    const std::size_t oldSize = DataPageView(page, row.page).At(row.slot).Size();
    const auto bytes = ResizeRow(page, row.page, row.slot, content.size(), kind);
    std::copy(content.begin(), content.end(), bytes.begin());
    if (content.size() != oldSize) NoteRoom(row.page, content.size() < oldSize);
}

void RowPages::Redirect(RowId row, RowId target) {
    Page& page = Modify(row.page);
    const std::size_t size = DataPageView(page, row.page).At(row.slot).Size();
    const auto bytes =
        ResizeRow(page, row.page, row.slot, std::max(size, RowPointerSize), RowKind::Moved);
    Store(bytes, 0, PointerTo(target));
}

void RowPages::Remove(RowId row) {
    ResizeRow(Modify(row.page), row.page, row.slot, 0, RowKind::Deleted);
    NoteRoom(row.page, true);
}

void RowPages::RemoveAll() {
    for (const PageNumber page : free_.Pages())
        free_.Remove(page);
    for (const PageNumber page : owned_.Pages()) {
        owned_.Remove(page);
        pages_.Free(page);
    }
    Forget();
}

void RowPages::Forget() {
    roomKnown_ = false;
    last_.reset();
    byRoom_.clear();
    roomOf_.clear();
}

void RowPages::LearnRoom() {
    if (roomKnown_) return;
    for (const PageNumber page : free_.Pages()) {
        const std::size_t room = DataPageView(*Read(page), page).RoomForNew();
        byRoom_.emplace(room, page);
        roomOf_.emplace(page, room);
    }
    roomKnown_ = true;
}

/// Brings a page's room up to date; `mayJoin`: the page may enter the free map.
void RowPages::NoteRoom(PageNumber page, bool mayJoin) {
    LearnRoom();
    const std::size_t room = DataPageView(*pages_.Read(page), page).RoomForNew();
    const auto known = roomOf_.find(page);
    if (known == roomOf_.end() && (!mayJoin || !owned_.Contains(page))) return;
    if (known == roomOf_.end()) {
        if (room < LeastUsefulRoom) return;
        free_.Add(page);
        byRoom_.emplace(room, page);
        roomOf_.emplace(page, room);
        return;
    }
    auto place = byRoom_.extract({known->second, page});
    if (room < LeastUsefulRoom) {
        free_.Remove(page);
        roomOf_.erase(known);
        return;
    }
    place.value().first = known->second = room;
    byRoom_.insert(std::move(place));
}

/// The fullest page that fits, else a new one.
PageNumber RowPages::PageWithRoom(std::size_t size) {
    LearnRoom();
    if (const auto found = byRoom_.lower_bound({size, 0}); found != byRoom_.end()) {
        return found->second;
    }
    return NewPage();
}

PageNumber RowPages::NewPage() {
    const PageNumber page = pages_.Allocate();
    MakeDataPage(pages_.Modify(page), owner_);
    owned_.Add(page);
    free_.Add(page);
    const std::size_t room = DataPageView(*pages_.Read(page), page).RoomForNew();
    byRoom_.emplace(room, page);
    roomOf_.emplace(page, room);
    return page;
}

}  // namespace jet::storage
