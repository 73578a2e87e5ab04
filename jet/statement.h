#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jet/schema.h"
#include "jet/value.h"

namespace jet {

/// One statement of a script.
struct ScriptStatement {
    std::string_view text;  ///< without the semicolon
    std::size_t line = 0;   ///< that it begins in, from 1
};

/// The statements of a text, which semicolons end; the last one may do without. Lines that begin
/// with two hyphens are comments between statements. The views refer to the text.
std::vector<ScriptStatement> SplitScript(std::string_view script);

/// A column's type as CREATE TABLE names it: "TEXT(50)", "COUNTER".
std::string SqlType(const ColumnDefinition& column);

/// A name between brackets, as statements take any name.
std::string SqlName(std::string_view name);

/// The statements that make a table of this shape: CREATE TABLE, and CREATE INDEX for each index.
std::vector<std::string> CreateStatements(const TableDefinition& table);

/// Whether the statement yields rows, that is, begins with SELECT.
bool IsQuery(std::string_view sql);

/// What a statement says that it probably does not mean, for people: a pattern of Like with `*` or
/// `?`, which stand for themselves here, or with a percent sign that does. Empty for most.
std::vector<std::string> HintsFor(std::string_view sql,
                                  std::span<const NamedValue> parameters = {});

}  // namespace jet
