#include "jet/verify/slots.h"

#include <utility>

namespace jet::verify {

namespace {

constexpr std::size_t HeaderSize = 14;
constexpr std::uint16_t MovedFlag = 0x4000, HiddenFlag = 0x8000, UnusedFlag = 0x2000;

}  // namespace

Slots::Slots(std::shared_ptr<const storage::Page> page) : page_(std::move(page)) {
    const storage::Page& bytes = *page_;
    if (bytes[0] != static_cast<std::uint8_t>(storage::PageType::Data) || bytes[1] != 1) return;
    count_ = storage::Load<std::uint16_t>(bytes, 12);
    sound_ = count_ <= Most;
    for (std::size_t slot = 0; sound_ && slot < count_; ++slot)
        sound_ = (Word(slot) & UnusedFlag) == 0 && Start(slot) <= End(slot) &&
                 Start(slot) >= HeaderSize + 2 * count_;
    if (!sound_) count_ = 0;
}

std::size_t Slots::Word(std::size_t slot) const {
    return storage::Load<std::uint16_t>(*page_, HeaderSize + 2 * slot);
}

std::size_t Slots::End(std::size_t slot) const {
    return slot == 0 ? storage::PageSize : Start(slot - 1);
}

SlotState Slots::State(std::size_t slot) const {
    switch (Word(slot) & (MovedFlag | HiddenFlag)) {
        case 0:
            return SlotState::Row;
        case MovedFlag:
            return SlotState::Moved;
        case HiddenFlag:
            return SlotState::MovedRow;
        default:
            return SlotState::Deleted;
    }
}

std::span<const std::uint8_t> Slots::Bytes(std::size_t slot) const {
    return std::span(*page_).subspan(Start(slot), End(slot) - Start(slot));
}

std::size_t Slots::RoomLeft() const {
    const std::size_t lowest = count_ == 0 ? storage::PageSize : Start(count_ - 1);
    return lowest - HeaderSize - 2 * count_;
}

}  // namespace jet::verify
