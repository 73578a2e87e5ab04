#pragma once

#include <algorithm>
#include <cstddef>
#include <deque>
#include <utility>
#include <vector>

namespace quillon {

/// Puts rows into the order of their numbers, which is that in which they came. The file has them
/// where there was room, and a run that has just added some would see another first row of an
/// artist than the next one.
template <typename Row>
void OrderByNumber(std::deque<Row>& rows) {
    if (std::ranges::is_sorted(rows, {}, &Row::id)) return;
    // The rows themselves are large, and most are in their place.
    std::vector<std::pair<decltype(Row::id), std::size_t>> order;
    order.reserve(rows.size());
    for (const Row& row : rows)
        order.emplace_back(row.id, order.size());
    std::ranges::sort(order);
    std::deque<Row> ordered;
    for (const auto& [id, place] : order)
        ordered.push_back(std::move(rows[place]));
    rows = std::move(ordered);
}

}  // namespace quillon
