#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "platform/files.h"

namespace quillon {

/// A file that consists of bytes, zero bytes without end, and bytes; it counts what is read.
class BytesReader : public BinaryReader {
  public:
    explicit BytesReader(std::string begin, std::uint64_t zeros = 0, std::string end = "")
        : begin_(std::move(begin)), zeros_(zeros), end_(std::move(end)) {}

    std::uint64_t Size() const override { return begin_.size() + zeros_ + end_.size(); }
    void SetPosition(std::uint64_t position) override { position_ = position; }
    std::size_t ReadInto(std::span<std::uint8_t> bytes) override {
        const std::uint64_t left = Size() - std::min(position_, Size());
        bytes = bytes.first(static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), left)));
        for (std::uint8_t& byte : bytes)
            byte = At(position_++);
        bytesRead += bytes.size();
        ++reads;
        return bytes.size();
    }

    std::uint64_t bytesRead = 0;
    std::size_t reads = 0;

  private:
    std::uint8_t At(std::uint64_t position) const {
        if (position < begin_.size()) return static_cast<std::uint8_t>(begin_[position]);
        position -= begin_.size();
        if (position < zeros_) return 0;
        return static_cast<std::uint8_t>(end_[position - zeros_]);
    }

    std::string begin_;
    std::uint64_t zeros_;
    std::string end_;
    std::uint64_t position_ = 0;
};

}  // namespace quillon
