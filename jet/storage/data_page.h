#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "jet/storage/format/page.h"

namespace jet::storage {

/// Owner word of the pages that hold long values: the letters "LVAL".
constexpr std::uint32_t LongValueOwner = 0x4C41564C;

/// A data page's fixed numbers.
constexpr std::size_t DataPageHeaderSize = 14, SlotWordSize = 2, MaxSlots = 255;

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
        : page_(page), number_(number), count_(Load<std::uint16_t>(page, CountOffset)) {
        if (page[0] != static_cast<std::uint8_t>(PageType::Data) || count_ > MaxSlots + 1)
            ThrowNoDataPage();
    }

    std::uint32_t Owner() const { return Load<std::uint32_t>(page_, 4); }
    std::size_t SlotCount() const { return count_; }
    Slot At(std::size_t slot) const {
        const std::size_t word = slot < count_ ? WordOf(slot) : 0;
        const std::size_t start = word & OffsetMask;
        const std::size_t end = slot == 0 ? PageSize : WordOf(slot - 1) & OffsetMask;
        if (slot >= count_ || start > end || end > PageSize ||
            start < DataPageHeaderSize + count_ * SlotWordSize)
            ThrowNoRow(slot);
        return {start, end, (word & MovedFlag) != 0, (word & HiddenFlag) != 0};
    }
    std::span<const std::uint8_t> BytesOf(const Slot& slot) const {
        return std::span(page_).subspan(slot.start, slot.Size());
    }

    /// The largest row that AddRow can take; 0 where there is no slot for one.
    std::size_t RoomForNew() const;
    /// The largest size that the slot's row can grow to in this page.
    std::size_t RoomFor(std::size_t slot) const;

  private:
    static constexpr std::size_t CountOffset = 12;
    static constexpr unsigned OffsetMask = 0x1FFF, MovedFlag = 0x4000, HiddenFlag = 0x8000;

    std::size_t WordOf(std::size_t slot) const {
        return Load<std::uint16_t>(page_, DataPageHeaderSize + slot * SlotWordSize);
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
    Home = 0x0000,
    Moved = 0x4000,
    Hidden = 0x8000,
    Deleted = 0xC000,
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
