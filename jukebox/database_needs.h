#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jet/schema.h"

namespace quillon {

/// A field that is missing, or cannot hold what is stored in it.
struct UnfitField {
    std::string_view name;
    std::string_view wanted;                 ///< e.g. "a number"
    std::optional<std::string_view> actual;  ///< nothing: there is no such field

    /// "no field Title" or "field Title holds a date instead of a text".
    std::string Text() const;
};

/// How a table of the database stands to the tool's needs.
struct TableFit {
    std::string_view name;  ///< as the tool has it
    bool isThere = false;
    std::vector<UnfitField> unfit;

    bool IsUsable() const { return isThere && unfit.empty(); }
};

/// Every table that the tool needs, as it is among these tables.
std::vector<TableFit> FitOfTables(std::span<const jet::TableDefinition> tables);

/// The names of all tables that the tool needs.
std::vector<std::string> NeededTableNames();

/// Whether a table of this name is one that the tool needs.
bool IsNeededTable(std::string_view name);

/// What a database with these tables lacks for the tool's work: tables, fields, and fields that
/// cannot hold what is stored in them; a sentence each. Empty when nothing is missing.
std::vector<std::string> MissingForTheTool(std::span<const jet::TableDefinition> tables);

}  // namespace quillon
