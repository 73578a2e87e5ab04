#include "jet/schema.h"

#include <algorithm>

namespace jet {

namespace {

char AsciiLower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

}  // namespace

std::optional<std::size_t> TableDefinition::FindColumn(std::string_view columnName) const {
    const auto sameName = [columnName](const ColumnDefinition& column) {
        return std::equal(column.name.begin(), column.name.end(), columnName.begin(),
                          columnName.end(),
                          [](char a, char b) { return AsciiLower(a) == AsciiLower(b); });
    };
    const auto found = std::find_if(columns.begin(), columns.end(), sameName);
    if (found == columns.end()) return std::nullopt;
    return static_cast<std::size_t>(found - columns.begin());
}

}  // namespace jet
