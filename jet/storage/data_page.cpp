#include "jet/storage/data_page.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "jet/storage/damaged.h"

namespace jet::storage {

namespace {

std::size_t WordOffset(std::size_t slot) {
    return data_page_format::SlotsOffset + slot * data_page_format::SlotSize;
}

std::size_t LowestRow(const DataPageView& view) {
    return view.SlotCount() == 0 ? PageSize : view.At(view.SlotCount() - 1).start;
}

void UpdateFreeBytes(Page& page, std::size_t count, std::size_t lowestRow) {
    Store(std::span(page), data_page_format::FreeBytesOffset,
          static_cast<std::uint16_t>(lowestRow - WordOffset(count)));
}

}  // namespace

void DataPageView::ThrowNoDataPage() const {
    const std::string page = "page " + std::to_string(number_);
    if (page_[0] != static_cast<std::uint8_t>(PageType::Data))
        ThrowDamaged(page + " is not a data page");
    ThrowDamaged(page + " claims " + std::to_string(count_) + " rows");
}

void DataPageView::ThrowNoRow(std::size_t slot) const {
    if (slot >= count_)
        ThrowDamaged("page " + std::to_string(number_) + " has no row " + std::to_string(slot));
    ThrowDamaged("row " + std::to_string(slot) + " of page " + std::to_string(number_) +
                 " lies outside its place");
}

std::size_t DataPageView::FreeBytes() const {
    return LowestRow(*this) - WordOffset(count_);
}

std::size_t DataPageView::RoomForNew() const {
    for (std::size_t slot = 0; slot < count_; ++slot) {
        if (const Slot dead = At(slot); dead.IsDeleted()) return FreeBytes() + dead.Size();
    }
    const std::size_t free = FreeBytes();
    return count_ >= data_page_format::MostSlots || free < data_page_format::SlotSize
               ? 0
               : free - data_page_format::SlotSize;
}

std::size_t DataPageView::RoomFor(std::size_t slot) const {
    return FreeBytes() + At(slot).Size();
}

void MakeDataPage(Page& page, std::uint32_t owner) {
    page.fill(0);
    page[0] = static_cast<std::uint8_t>(PageType::Data);
    page[1] = 1;
    Store(std::span(page), data_page_format::OwnerOffset, owner);
    UpdateFreeBytes(page, 0, PageSize);
}

std::uint8_t AddRow(Page& page, PageNumber number, std::size_t size, RowKind kind) {
    const DataPageView view(page, number);
    std::size_t slot = 0;
    while (slot < view.SlotCount() && !view.At(slot).IsDeleted())
        ++slot;
    if (slot == view.SlotCount()) {
        const std::size_t lowest = LowestRow(view);
        Store(std::span(page), data_page_format::SlotCountOffset,
              static_cast<std::uint16_t>(slot + 1));
        Store(std::span(page), WordOffset(slot), static_cast<std::uint16_t>(lowest));
    }
    const auto bytes = ResizeRow(page, number, slot, size, kind);
    std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
    return static_cast<std::uint8_t>(slot);
}

std::span<std::uint8_t> ResizeRow(Page& page, PageNumber number, std::size_t slot, std::size_t size,
                                  RowKind kind) {
    const DataPageView view(page, number);
    const std::size_t count = view.SlotCount();
    // Reading every slot proves that the rows stand in order, which the moves below rely on.
    for (std::size_t i = 0; i < count; ++i)
        static_cast<void>(view.At(i));
    const Slot old = view.At(slot);
    const std::size_t lowest = LowestRow(view);
    if (lowest - WordOffset(count) + old.Size() < size) {
        ThrowDamaged("page " + std::to_string(number) + " has no room for its row " +
                     std::to_string(slot));
    }

    // The rows below move by the difference; whichever block would be overwritten goes first.
    const std::size_t start = old.end - size;
    const std::size_t newLowest = lowest + start - old.start;
    const auto moveRow = [&] {
        std::memmove(page.data() + start, page.data() + old.start, std::min(size, old.Size()));
    };
    const auto moveRowsBelow = [&] {
        std::memmove(page.data() + newLowest, page.data() + lowest, old.start - lowest);
    };
    if (start > old.start) {
        moveRow();
        moveRowsBelow();
        std::fill(page.begin() + static_cast<std::ptrdiff_t>(lowest),
                  page.begin() + static_cast<std::ptrdiff_t>(newLowest), std::uint8_t{0});
    } else if (start < old.start) {
        moveRowsBelow();
        moveRow();
    }

    Store(std::span(page), WordOffset(slot),
          static_cast<std::uint16_t>(start | static_cast<std::uint16_t>(kind)));
    for (std::size_t i = slot + 1; i < count; ++i) {
        const auto word = Load<std::uint16_t>(page, WordOffset(i));
        const std::size_t moved = (word & data_page_format::StartMask) + start - old.start;
        Store(std::span(page), WordOffset(i),
              static_cast<std::uint16_t>(
                  moved | (word & (data_page_format::MovedFlag | data_page_format::HiddenFlag))));
    }
    UpdateFreeBytes(page, count, newLowest);
    return std::span(page).subspan(start, size);
}

}  // namespace jet::storage
