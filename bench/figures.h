#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::bench {

constexpr double Megabyte = 1024.0 * 1024.0;

/// A whole number above 0, when the text is one.
std::optional<std::size_t> SizeFrom(std::string_view text);

/// The sizes that a program's command line names, `usual` when it names none. Throws with `usage`
/// for anything else.
std::vector<std::size_t> SizesFrom(std::span<char*> arguments, const std::string& usage,
                                   std::vector<std::size_t> usual);

/// The one in the middle; of an even number the upper one of the two. There is at least one.
double Median(std::vector<double> values);

/// e where a figure grows as the size to the power of e.
double GrowthExponent(double small, double large, std::size_t smallSize, std::size_t largeSize);

}  // namespace quillon::bench
