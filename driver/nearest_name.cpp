#include "driver/nearest_name.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "platform/basic_text.h"

namespace quillon {
namespace {

/// How many letters have to be put in, taken out, replaced or swapped with their neighbour to get
/// from one text to the other.
std::size_t Distance(std::string_view left, std::string_view right) {
    std::vector<std::size_t> beforeLast, last, row(right.size() + 1);
    std::iota(row.begin(), row.end(), 0U);
    for (std::size_t i = 1; i <= left.size(); ++i) {
        beforeLast = std::exchange(last, row);
        row[0] = i;
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const std::size_t replaced = last[j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
            row[j] = std::min({replaced, last[j] + 1, row[j - 1] + 1});
            const bool swapped =
                i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1];
            if (swapped) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
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
