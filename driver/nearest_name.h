#pragma once

#include <span>
#include <string_view>

namespace quillon {

/// The name that a misspelt one is most likely meant to be: one that differs in few letters,
/// letter case not counting. Empty when none is near.
std::string_view NearestName(std::string_view misspelt, std::span<const std::string_view> names);

}  // namespace quillon
