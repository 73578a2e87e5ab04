#include "app/journal/row_names.h"

#include <array>
#include <cstdint>
#include <string_view>

#include "jet/database.h"
#include "jet/error.h"

namespace quillon {
namespace {

/// What names the rows of a table.
struct Naming {
    std::string_view table;
    std::array<std::string_view, 3> fields;  ///< the number first
    std::string_view between;
};

constexpr std::array<Naming, 3> Namings{{{"Albums", {"ID", "Artist", "Title"}, " - "},
                                         {"Tracks", {"ID", "SoundFile", "ID"}, ""},
                                         {"Playlists", {"ID", "FilePath", "Filename"}, ""}}};

std::int64_t NumberOf(const RowChange& change) {
    if (change.key.size() != 1) return 0;
    const auto* const number = std::get_if<std::int64_t>(&change.key.front().second);
    return number == nullptr ? 0 : *number;
}

template <typename AnyValue>
std::string TextOf(const AnyValue& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text == nullptr ? "" : *text;
}

/// Names of those rows that are wanted. `scan` visits a table's rows with the values of fields.
std::map<RowNames::Row, std::string> NamesOf(const RowNames::Rows& wanted, const auto& scan) {
    std::map<RowNames::Row, std::string> names;
    for (const Naming& naming : Namings) {
        const auto first = wanted.lower_bound({std::string(naming.table), INT64_MIN});
        if (first == wanted.end() || first->first != naming.table) continue;
        scan(naming, [&](auto, auto values) {
            const auto* const number = std::get_if<std::int64_t>(values.data());
            if (number == nullptr) return;
            const RowNames::Row row{std::string(naming.table), *number};
            if (!wanted.contains(row)) return;
            names[row] = TextOf(values[1]) + std::string(naming.between) + TextOf(values[2]);
        });
    }
    return names;
}

}  // namespace

void RowNames::AddUnnamed(const RowChange& change, Rows& rows) {
    if (change.kind == RowChange::Kind::Changed && NumberOf(change) != 0)
        rows.emplace(change.table, NumberOf(change));
}

RowNames::RowNames(const std::filesystem::path& database, std::span<const RowChange> changes) {
    Rows wanted;
    for (const RowChange& change : changes)
        AddUnnamed(change, wanted);
    if (wanted.empty()) return;
    try {
        jet::Database open = jet::Database::Open(database, jet::OpenMode::ReadOnly);
        names_ = NamesOf(wanted, [&open](const Naming& naming, const auto& visit) {
            open.Scan(naming.table, naming.fields,
                      [&visit](jet::Database::RowKey key, std::span<jet::Value> values) {
                          visit(key, values);
                      });
        });
    } catch (const jet::Error&) {
        return;  // the numbers alone have to do
    }
}

RowNames::RowNames(Connection& connection, const Rows& rows)
    : names_(NamesOf(rows, [&connection](const Naming& naming, const auto& visit) {
          connection.Scan(
              naming.table, naming.fields,
              [&visit](RowKey key, std::span<const Value> values) { visit(key, values); });
      })) {}

std::string RowNames::Of(const RowChange& change) const {
    const auto found = names_.find({change.table, NumberOf(change)});
    return found == names_.end() ? "" : found->second;
}

}  // namespace quillon
