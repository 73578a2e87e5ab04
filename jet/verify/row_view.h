#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "jet/storage/format/page.h"
#include "jet/verify/shape.h"

namespace jet::verify {

/// The parts of one row's bytes.
class RowView {
  public:
    RowView(std::span<const std::uint8_t> bytes, const Shape& shape)
        : bytes_(bytes), shape_(shape) {
        Measure();
    }

    /// What is wrong with the row's structure; empty where it can be read.
    std::string_view Fault() const { return fault_; }

    /// A Boolean column's content, or whether another column is not Null.
    bool IsSet(const Column& column) const {
        if (column.number >= columns_) return false;
        return (bytes_[maskStart_ + column.number / 8U] >> (column.number % 8U) & 1) != 0;
    }

    /// The stored bytes of a column that is no Boolean; none for Null.
    std::optional<std::span<const std::uint8_t>> Field(const Column& column) const {
        if (!IsSet(column)) return std::nullopt;
        if (column.fixed) {
            const std::size_t start = CountSize + column.offset;
            if (start + column.length > fixedEnd_) return std::nullopt;
            return bytes_.subspan(start, column.length);
        }
        if (column.slot >= variables_) return std::nullopt;
        const std::size_t start = VariableStart(column.slot);
        return bytes_.subspan(start, VariableStart(column.slot + 1U) - start);
    }

    /// Whether all fixed values up to this place among them are there.
    bool HasFixedPart(std::size_t end) const { return CountSize + end <= fixedEnd_; }

  private:
    static constexpr std::size_t CountSize = 2, WordSize = 2;

    void Measure();
    std::size_t VariableStart(std::size_t slot) const {
        return storage::Load<std::uint16_t>(bytes_, maskStart_ - (slot + 2) * WordSize);
    }

    std::span<const std::uint8_t> bytes_;
    const Shape& shape_;
    std::string_view fault_;
    std::size_t columns_ = 0;  ///< columns when the row was written
    std::size_t maskStart_ = 0;
    std::size_t variables_ = 0;  ///< variable columns when the row was written
    std::size_t fixedEnd_ = 0;   ///< fixed values end here at the latest
};

}  // namespace jet::verify
