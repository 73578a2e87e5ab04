#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "taglib/byte_window.h"
#include "tags/tag.h"

namespace quillon {

/// Bytes of the APE tag whose footer ends at `end`, with its header; 0 where there is none. `last`
/// are bytes that end there.
std::uint64_t ApeSize(std::span<const std::uint8_t> last, std::uint64_t end);

/// The texts of the APE tag that lies there, with the marker "TAG" if there are any. What is no
/// text, or longer than any, is passed over unread.
Tag ReadApe(ByteWindow& file, std::uint64_t begin, std::uint64_t end);

/// One of its texts, without blanks at its ends; "" where it has none of this name.
std::string ApeText(ByteWindow& file, std::uint64_t begin, std::uint64_t end,
                    std::string_view wanted);

}  // namespace quillon
