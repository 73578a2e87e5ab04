#include "bench/figures.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace quillon::bench {

std::optional<std::size_t> SizeFrom(std::string_view text) {
    std::size_t size = 0;
    const char* const first = text.data();
    const char* const last = first + text.size();
    const auto [end, error] = std::from_chars(first, last, size);
    if (error != std::errc() || end != last || size == 0) return std::nullopt;
    return size;
}

std::vector<std::size_t> SizesFrom(std::span<char*> arguments, const std::string& usage,
                                   std::vector<std::size_t> usual) {
    std::vector<std::size_t> sizes;
    for (const std::string_view argument : arguments.subspan(1)) {
        const auto size = SizeFrom(argument);
        if (!size) throw std::invalid_argument("usage: " + usage);
        sizes.push_back(*size);
    }
    return sizes.empty() ? std::move(usual) : sizes;
}

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

double GrowthExponent(double small, double large, std::size_t smallSize, std::size_t largeSize) {
    return std::log(large / small) /
           std::log(static_cast<double>(largeSize) / static_cast<double>(smallSize));
}

}  // namespace quillon::bench
