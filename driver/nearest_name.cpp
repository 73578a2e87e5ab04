#include "driver/nearest_name.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "platform/basic_text.h"

namespace quillon {
namespace {

/// How many letters have to be put in, taken out or replaced to get from one text to the other.
std::size_t Distance(std::string_view left, std::string_view right) {
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), 0U);
    for (std::size_t i = 0; i < left.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < right.size(); ++j) {
            const std::size_t replaced = diagonal + (left[i] == right[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

}  // namespace

std::string_view NearestName(std::string_view misspelt, std::span<const std::string_view> names) {
    const std::string wanted = LowerCase(misspelt);
    const std::size_t farthest = std::max<std::size_t>(1, misspelt.size() / 4);
    std::string_view nearest;
    std::size_t best = farthest + 1;
    for (const std::string_view name : names) {
        const std::size_t distance = Distance(wanted, LowerCase(name));
        if (distance >= best) continue;
        best = distance;
        nearest = name;
    }
    return nearest;
}

}  // namespace quillon
