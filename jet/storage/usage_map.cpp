#include "jet/storage/usage_map.h"

#include <algorithm>
#include <string>

#include "jet/error.h"
#include "jet/storage/damaged.h"

namespace jet::storage {

void UsageMap::Add(PageNumber page) {
    if (row_.Put(page, true)) return;
    if (row_.IsInline()) {
        if (MoveStart(page)) return;
        auto all = Pages();
        all.push_back(page);
        Rewrite(all);
        return;
    }
    const std::size_t stretch = page / PagesPerBitmap;
    if (stretch >= row_.BitmapSlots()) {
        throw Error(ErrorKind::NotSupported,
                    "page " + std::to_string(page) + " lies beyond what a usage map covers");
    }
    const PageNumber bitmap = pages_.Allocate();
    MapRow::MakeBitmapPage(pages_.Modify(bitmap), 0);
    row_.SetBitmapPage(stretch, bitmap);
    row_.Put(page, true);
}

std::vector<PageNumber> UsageMap::Pages() const {
    std::vector<PageNumber> pages;
    const PageNumber end = pages_.PageCount();
    row_.ForEach([&](PageNumber page) {
        if (page >= end) {
            ThrowDamaged("it ends too early: page " + std::to_string(page) +
                         " is in use, but there are " + std::to_string(end) + " pages");
        }
        pages.push_back(page);
    });
    return pages;
}

/// Maps of small things in large files stay in their row when their pages lie close together.
bool UsageMap::MoveStart(PageNumber page) {
    const auto pages = Pages();
    const PageNumber lowest = pages.empty() ? page : std::min(page, pages.front());
    const PageNumber highest = pages.empty() ? page : std::max(page, pages.back());
    const PageNumber start = lowest / 8 * 8;
    if ((highest - start) / 8 >= row_.Size() - 5) return false;
    const auto bytes = row_.Modify();
    std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
    Store(bytes, 1, start);
    for (const PageNumber old : pages)
        row_.Put(old, true);
    return row_.Put(page, true);
}

void UsageMap::Rewrite(const std::vector<PageNumber>& pages) {
    row_.MakeReference();
    for (const PageNumber page : pages)
        Add(page);
}

void UsageMap::MakeEmpty(std::span<std::uint8_t> row) {
    std::fill(row.begin(), row.end(), std::uint8_t{0});
}

}  // namespace jet::storage
