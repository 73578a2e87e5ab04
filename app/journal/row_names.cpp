#include "app/journal/row_names.h"

#include <array>
#include <cstdint>
#include <set>
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

std::string TextOf(const jet::Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text == nullptr ? "" : *text;
}

}  // namespace

RowNames::RowNames(const std::filesystem::path& database, std::span<const RowChange> changes) try {
    std::set<std::pair<std::string, std::int64_t>> wanted;
    for (const RowChange& change : changes) {
        if (change.kind == RowChange::Kind::Changed && NumberOf(change) != 0)
            wanted.emplace(change.table, NumberOf(change));
    }
    if (wanted.empty()) return;
    jet::Database open = jet::Database::Open(database, jet::OpenMode::ReadOnly);
    for (const Naming& naming : Namings) {
        const auto first = wanted.lower_bound({std::string(naming.table), INT64_MIN});
        if (first == wanted.end() || first->first != naming.table) continue;
        open.Scan(
            naming.table, naming.fields, [&](jet::Database::RowKey, std::span<jet::Value> values) {
                const auto* const number = std::get_if<std::int64_t>(values.data());
                if (number == nullptr) return;
                const std::pair row{std::string(naming.table), *number};
                if (!wanted.contains(row)) return;
                names_[row] = TextOf(values[1]) + std::string(naming.between) + TextOf(values[2]);
            });
    }
} catch (const jet::Error&) {
    // The numbers alone have to do.
    names_.clear();
}

std::string RowNames::Of(const RowChange& change) const {
    const auto found = names_.find({change.table, NumberOf(change)});
    return found == names_.end() ? "" : found->second;
}

}  // namespace quillon
