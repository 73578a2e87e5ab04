#include "app/report/report_names.h"

#include <array>
#include <string_view>

#include "jet/database.h"

namespace quillon {
namespace {

std::string TextOf(const jet::Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text == nullptr ? "" : *text;
}

}  // namespace

RowName ReportNames::Of(const std::string& table, std::int64_t id) {
    const auto known = tables_.find(table);
    const Names& names = known != tables_.end() ? known->second : tables_[table] = Read(table);
    const auto found = names.find(id);
    return found == names.end() ? RowName{} : found->second;
}

ReportNames::Names ReportNames::Read(const std::string& table) const {
    Names names;
    try {
        jet::Database database =
            jet::Database::Open(database_, jet::OpenMode::ReadOnly, jet::NeededTables::None());
        constexpr std::array<std::string_view, 3> Fields{"ID", "Artist", "Title"};
        database.Scan(table, Fields, [&names](jet::Database::RowKey, std::span<jet::Value> row) {
            if (const auto* const id = std::get_if<std::int64_t>(&row[0]))
                names[*id] = {TextOf(row[1]), TextOf(row[2])};
        });
    } catch (const jet::Error&) {
        return names;  // a report names rows by their numbers then
    }
    return names;
}

}  // namespace quillon
