#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

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
    const std::string& Fault() const { return fault_; }

    /// A Boolean column's content, or whether another column is not Null.
    bool IsSet(const Column& column) const;

    /// The stored bytes of a column that is no Boolean; none for Null.
    std::optional<std::span<const std::uint8_t>> Field(const Column& column) const;

  private:
    void Measure();
    std::size_t VariableStart(std::size_t slot) const;

    std::span<const std::uint8_t> bytes_;
    const Shape& shape_;
    std::string fault_;
    std::size_t columns_ = 0;  ///< columns when the row was written
    std::size_t maskStart_ = 0;
    std::size_t variables_ = 0;  ///< variable columns when the row was written
    std::size_t fixedEnd_ = 0;   ///< fixed values end here at the latest
};

}  // namespace jet::verify
