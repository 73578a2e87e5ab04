#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tags/tag.h"

namespace quillon {

/// No text of a tag is longer in bytes.
constexpr std::size_t LongestText = std::size_t{64} * 1024;

/// What of a value belongs into a field: of a date its year, of "3/12" the 3. "" where that is not
/// to be had. A number of a track or a disc is from 1 to 9999.
std::string FieldValueOf(std::string Tag::* field, std::string value);

/// Gives a tag with any text its marker.
void MarkIfAny(Tag& tag);

}  // namespace quillon
