#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "jet/storage/format/page.h"

namespace jet::test {

/// Makes a database with one table that has a bit of everything: indexes of two levels, moved rows,
/// long values of all kinds, Nulls, deleted rows.
void MakeSample(const std::filesystem::path& path);

/// The bytes of such a file, to be damaged in chosen places.
class SampleBytes {
  public:
    explicit SampleBytes(const std::filesystem::path& path);

    void Save(const std::filesystem::path& path) const;
    std::size_t PageCount() const { return bytes_.size() / storage::PageSize; }
    std::vector<std::uint8_t>& All() { return bytes_; }

    std::uint8_t& At(storage::PageNumber page, std::size_t offset);
    template <typename T>
    T Get(storage::PageNumber page, std::size_t offset) {
        return storage::Load<T>(bytes_, page * storage::PageSize + offset);
    }
    template <typename T>
    void Set(storage::PageNumber page, std::size_t offset, T value) {
        storage::Store<T>(bytes_, page * storage::PageSize + offset, value);
    }

    /// The table's definition, and pages of a kind that belong to it.
    storage::PageNumber Definition();
    std::vector<storage::PageNumber> DataPages();
    std::vector<storage::PageNumber> IndexPages(storage::PageType type);
    std::vector<storage::PageNumber> LongPages();

    /// Offsets in the definition.
    std::size_t ColumnOffset(std::size_t column);
    std::size_t NameOffset(std::size_t column);
    std::size_t IndexOffset(std::size_t index);

    /// Start of a row's bytes in its page.
    std::size_t RowStart(storage::PageNumber page, std::size_t slot);

    /// The first slot of a data page for which this holds.
    struct Slot {
        storage::PageNumber page = 0;
        std::size_t slot = 0;
    };
    Slot FindSlot(const std::function<bool(std::uint16_t flags)>& wanted);

    /// Where the bit for `page` lies in the map that this row pointer names; the map is inline.
    void SetMapBit(std::uint32_t pointer, storage::PageNumber page, bool value);

  private:
    std::vector<storage::PageNumber> Pages(storage::PageType type, std::uint32_t owner);

    std::vector<std::uint8_t> bytes_;
};

}  // namespace jet::test
