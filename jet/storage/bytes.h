#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "jet/storage/damaged.h"
#include "jet/storage/format/page.h"
#include "jet/value.h"

namespace jet::storage {

/// Reads numbers one after the other; past the end is Error(Damaged).
class ByteReader {
  public:
    /// `what` names the thing being read, for messages; it must outlive the reader.
    ByteReader(std::span<const std::uint8_t> bytes, const std::string& what)
        : bytes_(bytes), what_(what) {}

    template <typename T>
    T Next() {
        return Load<T>(Take(sizeof(T)), 0);
    }
    std::span<const std::uint8_t> Take(std::size_t count) {
        if (count > bytes_.size() - offset_) ThrowDamaged(what_ + " ends too early");
        offset_ += count;
        return bytes_.subspan(offset_ - count, count);
    }
    void Skip(std::size_t count) { Take(count); }
    std::size_t Offset() const { return offset_; }
    std::size_t Left() const { return bytes_.size() - offset_; }

  private:
    std::span<const std::uint8_t> bytes_;
    const std::string& what_;
    std::size_t offset_ = 0;
};

/// Appends a little-endian number.
template <std::integral T>
void Append(Bytes& bytes, T value) {
    bytes.resize(bytes.size() + sizeof(T));
    Store(std::span(bytes), bytes.size() - sizeof(T), value);
}

inline void Append(Bytes& bytes, std::span<const std::uint8_t> more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

inline void AppendZeros(Bytes& bytes, std::size_t count) {
    bytes.resize(bytes.size() + count);
}

/// A row's place in the form that usage maps, overflow rows and long values are named by: slot in
/// the lowest byte, page above it.
constexpr std::size_t RowPointerSize = 4;
inline RowId RowIdOf(std::uint32_t pointer) {
    return {pointer >> 8, static_cast<std::uint8_t>(pointer & 0xFF)};
}
inline std::uint32_t PointerTo(RowId row) {
    return row.page << 8 | row.slot;
}

}  // namespace jet::storage
