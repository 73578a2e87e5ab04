#pragma once

#include <string>
#include <string_view>

#include "jet/text.h"

namespace jet::engine {

std::string ToLower(std::string_view text);
std::string ToUpper(std::string_view text);

/// The folded text backwards, byte by byte. Texts with the same end have keys with the same
/// beginning, so that an ordered index finds them.
std::string SuffixKey(std::string_view text);

/// Whether the text matches the pattern: % stands for any characters, no other character is
/// special, letter case does not count. A pattern that begins with %, goes on and does not end with
/// % means "ends with the rest", further percent signs being literal.
bool MatchesPattern(std::string_view text, std::string_view pattern);

}  // namespace jet::engine
