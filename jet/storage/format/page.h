#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace jet::storage {

static_assert(std::endian::native == std::endian::little,
              "the file format is little-endian and is read with plain copies");

constexpr std::size_t PageSize = 4096;

/// A page's position in the file: page n lies at byte n * PageSize. 0 also stands for "none".
using PageNumber = std::uint32_t;

using Page = std::array<std::uint8_t, PageSize>;

/// First byte of a page in use.
enum class PageType : std::uint8_t {
    Header = 0x00,
    Data = 0x01,
    Definition = 0x02,
    IndexNode = 0x03,
    IndexLeaf = 0x04,
    UsageBitmap = 0x05,
};

/// Names a row for the whole of its life: index entries and overflow pointers hold it.
struct RowId {
    PageNumber page = 0;  ///< at most 24 bits
    std::uint8_t slot = 0;

    /// Page and slot in one number, ordered like the file.
    std::int64_t AsInteger() const { return (std::int64_t{page} << 8) | slot; }
    static RowId FromInteger(std::int64_t number) {
        return {static_cast<PageNumber>(number >> 8), static_cast<std::uint8_t>(number & 0xFF)};
    }
    auto operator<=>(const RowId&) const = default;
};

/// Reads or writes a little-endian number of type T at an offset. The caller has checked that it
/// lies inside the bytes.
template <typename T>
T Load(std::span<const std::uint8_t> bytes, std::size_t offset) {
    T value;
    std::memcpy(&value, bytes.data() + offset, sizeof(T));
    return value;
}
template <typename T>
void Store(std::span<std::uint8_t> bytes, std::size_t offset, T value) {
    std::memcpy(bytes.data() + offset, &value, sizeof(T));
}

}  // namespace jet::storage
