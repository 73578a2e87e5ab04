#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace quillon {

/// What a new track row takes from its file's tag.
struct TrackTag {
    std::optional<std::int16_t> track;   ///< nothing: the tag numbers no track
    std::optional<std::int16_t> length;  ///< seconds
};

/// Reads a tag record. Failure: Overflow for a number beyond 16 bits.
TrackTag ReadTrackTag(std::string_view record);

/// The track number alone; nothing also where 16 bits cannot hold it.
std::optional<std::int16_t> ReadTrackNumber(std::string_view record);

}  // namespace quillon
