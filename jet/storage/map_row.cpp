#include "jet/storage/map_row.h"

#include <algorithm>
#include <string>

#include "jet/storage/damaged.h"
#include "jet/storage/data_page.h"

namespace jet::storage {

namespace {

std::shared_ptr<const Page> ReadBitmap(PageStore& pages, PageNumber number) {
    auto page = pages.Read(number);
    if ((*page)[0] != static_cast<std::uint8_t>(PageType::UsageBitmap)) {
        ThrowDamaged("page " + std::to_string(number) + " is not a usage bitmap");
    }
    return page;
}

}  // namespace

std::pair<std::size_t, std::size_t> MapRow::Extent(const Page& page) const {
    const DataPageView view(page, row_.page);
    const Slot slot = view.At(row_.slot);
    const auto type = slot.Size() == 0 ? std::uint8_t{0xFF} : page[slot.start];
    if (slot.moved || slot.hidden || type > usage_map_format::ReferenceMap ||
        slot.Size() < usage_map_format::BitsOffset) {
        ThrowDamaged("row " + std::to_string(row_.slot) + " of page " + std::to_string(row_.page) +
                     " is not a usage map");
    }
    return {slot.start, slot.Size()};
}

std::vector<MapRow::Stretch> MapRow::Stretches() const {
    const auto page = pages_.Read(row_.page);
    const auto [offset, size] = Extent(*page);
    std::vector<Stretch> stretches;
    if ((*page)[offset] == usage_map_format::InlineMap) {
        const auto first = Load<PageNumber>(*page, offset + usage_map_format::FirstPageOffset);
        // A start beyond any possible page would let the sums below wrap around.
        if (first > usage_map_format::LargestPage)
            ThrowDamaged("a usage map starts at page " + std::to_string(first));
        stretches.push_back({first, row_.page, offset + usage_map_format::BitsOffset,
                             size - usage_map_format::BitsOffset});
        return stretches;
    }
    for (std::size_t i = 0; i < BitmapSlots(size); ++i) {
        const auto bitmap = Load<PageNumber>(*page, offset + PlaceOf(i));
        if (bitmap == 0) continue;
        ReadBitmap(pages_, bitmap);
        stretches.push_back({static_cast<PageNumber>(i) * PagesPerBitmap, bitmap,
                             usage_map_format::BitmapBitsOffset,
                             PageSize - usage_map_format::BitmapBitsOffset});
    }
    return stretches;
}

std::optional<MapRow::Bit> MapRow::Locate(PageNumber number) const {
    const auto page = pages_.Read(row_.page);
    const auto [offset, size] = Extent(*page);
    const auto mask = static_cast<std::uint8_t>(1U << number % 8);
    if ((*page)[offset] == usage_map_format::InlineMap) {
        const auto first = Load<PageNumber>(*page, offset + usage_map_format::FirstPageOffset);
        if (number < first || (number - first) / 8 >= size - usage_map_format::BitsOffset)
            return std::nullopt;
        return Bit{row_.page, offset + usage_map_format::BitsOffset + (number - first) / 8,
                   static_cast<std::uint8_t>(1U << (number - first) % 8)};
    }
    const std::size_t stretch = number / PagesPerBitmap;
    if (stretch >= BitmapSlots(size)) return std::nullopt;
    const auto bitmap = Load<PageNumber>(*page, offset + PlaceOf(stretch));
    if (bitmap == 0) return std::nullopt;
    ReadBitmap(pages_, bitmap);
    return Bit{bitmap, usage_map_format::BitmapBitsOffset + number % PagesPerBitmap / 8, mask};
}

std::optional<bool> MapRow::Get(PageNumber page) const {
    const auto bit = Locate(page);
    if (!bit) return std::nullopt;
    return ((*pages_.Read(bit->in))[bit->byte] & bit->mask) != 0;
}

bool MapRow::Put(PageNumber page, bool value) {
    const auto bit = Locate(page);
    if (!bit) return false;
    const std::uint8_t old = (*pages_.Read(bit->in))[bit->byte];
    const auto changed = static_cast<std::uint8_t>(
        value ? old | bit->mask : old & static_cast<std::uint8_t>(~bit->mask));
    if (changed != old) pages_.Modify(bit->in)[bit->byte] = changed;
    return true;
}

bool MapRow::IsInline() const {
    const auto page = pages_.Read(row_.page);
    return (*page)[Extent(*page).first] == usage_map_format::InlineMap;
}

std::size_t MapRow::Size() const {
    return Extent(*pages_.Read(row_.page)).second;
}

std::span<std::uint8_t> MapRow::Modify() {
    Page& page = pages_.Modify(row_.page);
    const auto [offset, size] = Extent(page);
    return std::span(page).subspan(offset, size);
}

void MapRow::MakeReference() {
    const auto bytes = Modify();
    std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
    bytes[0] = usage_map_format::ReferenceMap;
}

PageNumber MapRow::BitmapPage(std::size_t stretch) const {
    const auto page = pages_.Read(row_.page);
    const auto [offset, size] = Extent(*page);
    return stretch < BitmapSlots(size) ? Load<PageNumber>(*page, offset + PlaceOf(stretch)) : 0;
}

void MapRow::SetBitmapPage(std::size_t stretch, PageNumber page) {
    Store(Modify(), PlaceOf(stretch), page);
}

void MapRow::MakeBitmapPage(Page& page, std::uint8_t content) {
    page.fill(content);
    page[0] = static_cast<std::uint8_t>(PageType::UsageBitmap);
    page[1] = 1;
    page[2] = page[3] = 0;
}

}  // namespace jet::storage
