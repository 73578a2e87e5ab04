#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "jet/value.h"

namespace jet::storage::test {

/// A value as the description of a test database writes it.
struct DescribedValue {
    enum class Kind { Word, Number, Text };
    Kind kind = Kind::Word;
    std::string text;  ///< null, true, false; digits; or the text's characters
};

struct DescribedRow {
    std::string table;
    std::vector<std::pair<std::string, DescribedValue>> fields;  ///< column name and value
};

/// The rows of all tables as another reader has seen them.
std::vector<DescribedRow> ReadDescribedRows(const std::filesystem::path& database);

/// A value in the description's form. Floating-point numbers are compared as numbers, all else as
/// text: see Matches.
DescribedValue Describe(const Value& value);
bool Matches(const Value& value, const DescribedValue& described);

}  // namespace jet::storage::test
