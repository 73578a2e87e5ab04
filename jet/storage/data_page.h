#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "jet/storage/data_page_format.h"
#include "jet/storage/format/page.h"

namespace jet::storage {

/// One slot of a data page.
struct Slot {
    std::size_t start = 0, end = 0;
    bool moved = false;   ///< its first four bytes point to the row's data elsewhere
    bool hidden = false;  ///< the data of such a row, reached through its pointer only

    bool IsDeleted() const { return moved && hidden; }
    std::size_t Size() const { return end - start; }
};

/// Looks into a page of slotted rows. Nothing that the page contains can lead outside it:
/// contradictions are Error(Damaged).
class DataPageView {
  public:
    /// `number` is for messages; the page must outlive the view.
    DataPageView(const Page& page, PageNumber number)
        : page_(page),
          number_(number),
          count_(Load<std::uint16_t>(page, data_page_format::SlotCountOffset)) {
        if (page[0] != static_cast<std::uint8_t>(PageType::Data) ||
            count_ > data_page_format::MostSlots + 1)
            ThrowNoDataPage();
    }

    std::uint32_t Owner() const {
        return Load<std::uint32_t>(page_, data_page_format::OwnerOffset);
    }
    std::size_t SlotCount() const { return count_; }
    Slot At(std::size_t slot) const {
        const std::size_t word = slot < count_ ? WordOf(slot) : 0;
        const std::size_t start = word & data_page_format::StartMask;
        const std::size_t end =
            slot == 0 ? PageSize : WordOf(slot - 1) & data_page_format::StartMask;
        if (slot >= count_ || start > end || end > PageSize ||
            start < data_page_format::SlotsOffset + count_ * data_page_format::SlotSize)
            ThrowNoRow(slot);
        return {start, end, (word & data_page_format::MovedFlag) != 0,
                (word & data_page_format::HiddenFlag) != 0};
    }
    std::span<const std::uint8_t> BytesOf(const Slot& slot) const {
        return std::span(page_).subspan(slot.start, slot.Size());
    }

    /// The largest row that AddRow can take; 0 where there is no slot for one.
    std::size_t RoomForNew() const;
    /// The largest size that the slot's row can grow to in this page.
    std::size_t RoomFor(std::size_t slot) const;

  private:
    std::size_t WordOf(std::size_t slot) const {
        return Load<std::uint16_t>(
            page_, data_page_format::SlotsOffset + slot * data_page_format::SlotSize);
    }
    [[noreturn]] void ThrowNoDataPage() const;
    [[noreturn]] void ThrowNoRow(std::size_t slot) const;
    std::size_t FreeBytes() const;

    const Page& page_;
    PageNumber number_;
    std::size_t count_;
};

/// The slot's flags, for the functions below.
enum class RowKind : std::uint16_t {
    Home = 0,
    Moved = data_page_format::MovedFlag,
    Hidden = data_page_format::HiddenFlag,
    Deleted = data_page_format::MovedFlag | data_page_format::HiddenFlag,
};

/// Makes the page an empty data page.
void MakeDataPage(Page& page, std::uint32_t owner);

/// Adds a row of `size` zero bytes and returns its slot: a deleted one where there is one, else a
/// new one. The caller has checked RoomForNew().
std::uint8_t AddRow(Page& page, PageNumber number, std::size_t size, RowKind kind);

/// Gives a slot another size and kind. All slots keep their numbers; their rows move. The row's
/// first bytes stay, as many as fit; the caller has checked RoomFor(). Returns the row's bytes.
std::span<std::uint8_t> ResizeRow(Page& page, PageNumber number, std::size_t slot, std::size_t size,
                                  RowKind kind);

}  // namespace jet::storage
