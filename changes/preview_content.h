#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace quillon {

/// What a file of a preview holds: bytes, a piece of a file that is there, if any, and bytes behind
/// it.
struct PreviewContent {
    std::string ground;      ///< Windows path of the file that is there; "" for none
    std::uint64_t kept = 0;  ///< where its piece ends
    std::shared_ptr<const std::string> added = NoBytes();
    std::uint64_t skipped = 0;  ///< where its piece begins
    std::shared_ptr<const std::string> head = NoBytes();

    static std::shared_ptr<const std::string> NoBytes();

    std::uint64_t Size() const { return head->size() + (kept - skipped) + added->size(); }
    /// With these bytes from a position on, which is not behind the end, and no others after them.
    PreviewContent WithEnd(std::uint64_t position, std::span<const std::uint8_t> bytes) const;
    /// With these bytes in the place of those before a position, which is not behind the end.
    PreviewContent WithHead(std::uint64_t position, std::span<const std::uint8_t> bytes) const;
    /// `files` opens the file that is there and must outlive the reader.
    std::unique_ptr<BinaryReader> Open(Files& files) const;
};

}  // namespace quillon
