#include "reconcile/number_order.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace quillon {
namespace {

using Order = std::vector<std::size_t>;

/// A file and the number that it would have.
using Wish = std::pair<std::int64_t, std::size_t>;

bool AreDistinct(const std::vector<Wish>& sorted) {
    const auto same = [](const Wish& a, const Wish& b) { return a.first == b.first; };
    return std::adjacent_find(sorted.begin(), sorted.end(), same) == sorted.end();
}

/// The files by the numbers they had, none where not each had one of its own.
Order OrderBefore(std::span<const std::int64_t> before) {
    std::vector<Wish> had;
    had.reserve(before.size());
    for (std::size_t file = 0; file < before.size(); ++file)
        had.emplace_back(before[file], file);
    std::sort(had.begin(), had.end());
    if (had.front().first <= 0 || !AreDistinct(had)) return {};
    Order order;
    for (const Wish& wish : had)
        order.push_back(wish.second);
    return order;
}

/// Each file with a number at that number, the others in the gaps; none where a number is missing.
Order OrderOfWishes(const std::vector<Wish>& wishes, std::span<const std::int64_t> numbers) {
    const std::size_t none = numbers.size();
    Order order(numbers.size(), none);
    std::vector<bool> isPlaced(numbers.size());
    for (const auto& [number, file] : wishes) {
        const auto found = std::lower_bound(numbers.begin(), numbers.end(), number);
        if (found == numbers.end() || *found != number) return {};
        order[static_cast<std::size_t>(found - numbers.begin())] = file;
        isPlaced[file] = true;
    }
    std::size_t next = 0;
    for (std::size_t& place : order) {
        if (place != none) continue;
        while (isPlaced[next])
            ++next;
        place = next++;
    }
    return order;
}

}  // namespace

std::vector<std::size_t> OrderOfOneAge(std::span<const std::int64_t> before,
                                       std::span<const std::int64_t> numbers,
                                       const TagNumberOf& tagNumberOf) {
    if (Order order = OrderBefore(before); !order.empty()) return order;
    std::vector<Wish> wishes;
    for (std::size_t file = 0; file < before.size(); ++file) {
        if (const auto number = tagNumberOf(file)) wishes.emplace_back(*number, file);
    }
    Order tagged;
    for (const Wish& wish : wishes)
        tagged.push_back(wish.second);
    std::stable_sort(wishes.begin(), wishes.end(),
                     [](const Wish& a, const Wish& b) { return a.first < b.first; });
    if (AreDistinct(wishes)) {
        if (Order order = OrderOfWishes(wishes, numbers.first(before.size())); !order.empty())
            return order;
    }
    Order order(before.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    for (std::size_t i = 0; i < tagged.size(); ++i)
        order[tagged[i]] = wishes[i].second;
    return order;
}

}  // namespace quillon
