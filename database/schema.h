#pragma once

#include <cstdint>
#include <string_view>

namespace quillon {

/// `Albums.Player` of the albums that the tool owns.
constexpr std::int64_t OwnedPlayer = 1001;

/// First twelve characters of every `CDJID` that the tool makes.
constexpr std::string_view CdjidPrefix = "252E671073EC";

/// The identifier in hand before an album is matched.
constexpr std::string_view NoCdjid = "00000000";

}  // namespace quillon
