#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "platform/files.h"
#include "tags/tag.h"

namespace quillon {

/// What a file says beside its tag of version 1.
struct OtherTags {
    /// Of ID3 version 2, else of APE, with texts in full. Its marker is "TAG" if it has any text,
    /// its genre a name, where one is told.
    Tag tag;
    std::optional<std::uint8_t> genreNumber = {};  ///< where that is told by its number alone
    std::optional<std::int64_t> seconds = {};      ///< length of the sound, above 0
};

/// Reads tags of the kinds that came after version 1, and the length of the sound itself.
class TagFormats {
  public:
    virtual ~TagFormats() = default;

    /// How many of a file's last bytes Read wants to see.
    static constexpr std::size_t EndSize = 160;

    /// `end`: the file's last bytes, EndSize or all. Whatever else the bytes are, they are no
    /// failure, and only a small part of them is read, however large the tags say that they are.
    /// Failure: what `file` throws.
    virtual OtherTags Read(BinaryReader& file, std::span<const std::uint8_t> end) = 0;
};

}  // namespace quillon
