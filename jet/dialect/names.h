#pragma once

#include <algorithm>
#include <string_view>

namespace jet::dialect {

/// Names and keywords do not distinguish the letter case of A to Z.
constexpr char LowerLetter(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

constexpr bool SameName(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return LowerLetter(a) == LowerLetter(b); });
}

}  // namespace jet::dialect
