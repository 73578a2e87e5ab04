#include "undo/date_undo.h"

#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace quillon {
namespace {

/// How many rows of a table have each date in a field.
using Dates = std::map<DateTime, std::uint64_t>;

Dates DatesIn(Connection& connection, const std::string& table, std::string_view field) {
    Dates dates;
    connection.Scan(table, std::span(&field, 1), [&dates](RowKey, std::span<const Value> values) {
        if (const auto* const date = std::get_if<DateTime>(&values.front())) ++dates[*date];
    });
    return dates;
}

/// Decides, and leaves the dates as they would be then.
DateUndo WayBackOf(const DateReplaced& replaced, Dates& present) {
    DateUndo undo{.replaced = replaced};
    const auto found = present.find(replaced.after);
    if (found == present.end()) {
        undo.outcome.state = Outcome::State::WasSo;
        return undo;
    }
    undo.rows = found->second;
    if (present.contains(replaced.before)) {
        undo.outcome = Outcome::Refusal("there are rows with the date that they had");
        return undo;
    }
    present[replaced.before] = undo.rows;
    present.erase(found);
    return undo;
}

}  // namespace

std::vector<DateUndo> WayBackOf(Connection& connection, std::span<const DateReplaced> dates) {
    std::vector<DateUndo> undos;
    std::map<std::pair<std::string, std::string>, Dates> present;
    for (std::size_t i = dates.size(); i-- > 0;) {
        const DateReplaced& replaced = dates[i];
        const auto [known, isNew] = present.try_emplace({replaced.table, replaced.field});
        if (isNew) known->second = DatesIn(connection, replaced.table, replaced.field);
        undos.push_back(WayBackOf(replaced, known->second));
    }
    return undos;
}

void PutBack(Connection& connection, std::span<DateUndo> dates, const Attempt& attempt) {
    for (DateUndo& date : dates) {
        if (!date.IsToDo()) continue;
        const DateReplaced& replaced = date.replaced;
        const std::string failure = attempt([&] {
            connection.ReplaceDate(replaced.table, replaced.field, replaced.after, replaced.before);
        });
        if (!failure.empty()) date.outcome = Outcome::Refusal(failure);
    }
}

}  // namespace quillon
