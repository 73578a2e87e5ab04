#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace quillon {

/// The number of a track as a tag has it; nothing for what is no number. Failure: Overflow beyond
/// 16 bits.
std::optional<std::int64_t> StoredNumberIn(std::string_view text);

/// The number that a tag asks for its track, 0 or more; nothing for what is none, or too large for
/// a row.
std::optional<std::int64_t> AskedNumberIn(std::string_view text);

/// The disc that a tag names; 1 for what is no number from 1 to 99.
std::int64_t DiscNumberIn(std::string_view text);

}  // namespace quillon
