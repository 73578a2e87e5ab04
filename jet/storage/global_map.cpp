#include "jet/storage/global_map.h"

#include <algorithm>
#include <string>
#include <vector>

#include "jet/error.h"
#include "jet/storage/damaged.h"
#include "jet/storage/data_page.h"

namespace jet::storage {

namespace {

constexpr std::uint8_t AllFree = 0xFF, NoneFree = 0;
constexpr std::size_t GrowthStep = 4;
constexpr PageNumber NoPage = 0;

}  // namespace

PageNumber GlobalMap::Take() {
    if (const PageNumber free = FindFree(); free != NoPage) {
        row_.Put(free, false);
        searchFrom_ = free + 1;
        return free;
    }
    const PageNumber page = append_();
    Cover(page);
    row_.Put(page, false);
    // Covering the new page may have taken pages of its own behind it.
    searchFrom_ = page + 1;
    return page;
}

void GlobalMap::Release(PageNumber page) {
    const auto bit = row_.Get(page);
    if (bit && *bit) ThrowDamaged("page " + std::to_string(page) + " is both used and free");
    if (!bit && !row_.IsInline()) AddBitmap(page / PagesPerBitmap, NoneFree);
    if (row_.Put(page, true)) searchFrom_ = std::min(searchFrom_, page);
}

PageNumber GlobalMap::FindFree() {
    const PageNumber end = pages_.PageCount();
    if (searchFrom_ >= end) return NoPage;
    for (const auto& stretch : row_.Stretches()) {
        if (stretch.End() <= searchFrom_ || stretch.first >= end) continue;
        const auto bits = pages_.Read(stretch.in);
        const PageNumber from = std::max(searchFrom_, stretch.first);
        for (PageNumber page = from; page < std::min(end, stretch.End()); ++page) {
            const PageNumber bit = page - stretch.first;
            const unsigned byte = (*bits)[stretch.offset + bit / 8];
            // The header and the map itself are never free, whatever a damaged map says.
            if (page > 1 && (byte >> bit % 8 & 1U) != 0) return page;
        }
    }
    searchFrom_ = end;
    return NoPage;
}

/// Makes sure that a page just appended has a bit.
void GlobalMap::Cover(PageNumber page) {
    if (row_.Get(page)) return;
    if (row_.IsInline()) {
        if (Lengthen(page)) return;
        ConvertToBitmaps(page);
    }
    // Only where a stretch begins is all of it still unused; elsewhere a missing bitmap page says
    // that all its pages are in use, the new one too.
    if (page % PagesPerBitmap == 0) AddBitmap(page / PagesPerBitmap, AllFree);
}

bool GlobalMap::Lengthen(PageNumber page) {
    const auto stretch = row_.Stretches().front();
    if (page < stretch.first) return true;
    const std::size_t missing = (page - stretch.first) / 8 + 1 - stretch.bytes;
    const std::size_t growth = (missing + GrowthStep - 1) / GrowthStep * GrowthStep;
    const RowId where = row_.Where();
    const std::size_t size = row_.Size();
    Page& map = pages_.Modify(where.page);
    if (DataPageView(map, where.page).RoomFor(where.slot) < size + growth) return false;
    const auto bytes = ResizeRow(map, where.page, where.slot, size + growth, RowKind::Home);
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(size), bytes.end(), AllFree);
    return true;
}

/// `page` is the first page that the row does not cover; all behind it is new.
void GlobalMap::ConvertToBitmaps(PageNumber page) {
    std::vector<PageNumber> free;
    row_.ForEach([&](PageNumber freePage) { free.push_back(freePage); });

    const RowId where = row_.Where();
    ResizeRow(pages_.Modify(where.page), where.page, where.slot, MapRowSize, RowKind::Home);
    row_.MakeReference();
    const std::size_t last = page / PagesPerBitmap;
    for (std::size_t stretch = 0; stretch <= last; ++stretch)
        AddBitmap(stretch, NoneFree);
    for (const PageNumber freePage : free)
        row_.Put(freePage, true);
    const PageNumber end = (page / PagesPerBitmap + 1) * PagesPerBitmap;
    for (PageNumber unused = pages_.PageCount(); unused < end; ++unused)
        row_.Put(unused, true);
}

void GlobalMap::AddBitmap(std::size_t stretch, std::uint8_t content) {
    if (stretch >= row_.BitmapSlots()) {
        throw Error(ErrorKind::Io, "The database has reached its largest size.");
    }
    const PageNumber bitmap = append_();
    MapRow::MakeBitmapPage(pages_.Modify(bitmap), content);
    row_.SetBitmapPage(stretch, bitmap);
    row_.Put(bitmap, false);
}

}  // namespace jet::storage
