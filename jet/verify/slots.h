#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "jet/storage/format/page.h"
#include "jet/verify/findings.h"

namespace jet::verify {

enum class SlotState : std::uint8_t {
    Row,       ///< a row that lies here
    Moved,     ///< a row that lies elsewhere: four bytes name the place
    MovedRow,  ///< the content of a row whose home is elsewhere
    Deleted,
};

/// The rows of a data page.
class Slots {
  public:
    static constexpr std::size_t Most = 255;  ///< a row's number has one byte

    /// Empty if the page is no data page, or so badly damaged that no row can be found in it.
    explicit Slots(std::shared_ptr<const storage::Page> page);

    /// Whether the page is a data page with a sound list of rows.
    bool IsSound() const { return sound_; }
    std::size_t Count() const { return count_; }
    SlotState State(std::size_t slot) const;
    std::span<const std::uint8_t> Bytes(std::size_t slot) const;

    std::uint32_t Owner() const { return storage::Load<std::uint32_t>(*page_, 4); }
    std::uint16_t FreeBytes() const { return storage::Load<std::uint16_t>(*page_, 2); }
    /// What FreeBytes() has to be.
    std::size_t RoomLeft() const;

  private:
    std::size_t Word(std::size_t slot) const;
    std::size_t Start(std::size_t slot) const { return Word(slot) & 0x1FFF; }
    std::size_t End(std::size_t slot) const;

    std::shared_ptr<const storage::Page> page_;
    std::size_t count_ = 0;
    bool sound_ = false;
};

/// Reads the row pointer of usage maps, moved rows and long values.
inline storage::RowId RowPointer(std::span<const std::uint8_t> bytes, std::size_t offset) {
    const auto number = storage::Load<std::uint32_t>(bytes, offset);
    return {number >> 8, static_cast<std::uint8_t>(number & 0xFF)};
}

/// A place in the file, for messages.
inline std::string Place(storage::RowId row) {
    return std::to_string(row.page) + ":" + std::to_string(row.slot);
}

}  // namespace jet::verify
