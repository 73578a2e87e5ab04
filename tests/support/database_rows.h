#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database.h"

namespace quillon::support {

/// A query's rows, each as its fields' texts with "|" between: "Null" for Null, True and False,
/// dates in the system's text form, "0" for the zero date.
std::vector<std::string> Rows(Connection& connection, std::string_view sql);

/// One value's text, as in Rows.
std::string ValueText(const Value& value);

/// What the independent structural check says against a database file: "" when it finds no fault,
/// or when the check is not at hand. The file must be closed.
std::string StructuralFaults(const std::filesystem::path& database);

/// A table as mdbtools exports it, headings first. The file must be closed.
std::string ExportedTable(const std::filesystem::path& database, std::string_view table);

}  // namespace quillon::support
