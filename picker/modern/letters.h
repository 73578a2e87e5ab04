#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// Names without a letter in front, digits for instance, are under this heading.
constexpr std::string_view NoLetter = "#";

/// Names in scripts that have too many characters for a heading each are under this one.
constexpr std::string_view OtherScripts = "Other";

/// The heading that a name is found under: its first letter, large and without accent.
std::string LetterOf(std::string_view name);

/// Whether one heading comes before another: no letter, A to Z, other alphabets, other scripts.
bool LetterLess(std::string_view left, std::string_view right);

/// The first letters or digits of a title's first two words, large: what stands for a missing
/// cover. A note where there are none.
std::string InitialsOf(std::string_view title);

}  // namespace quillon
