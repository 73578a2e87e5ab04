#pragma once

#include <string>
#include <vector>

#include "jet/storage/pager.h"

namespace jet::storage {

/// Fixed definition pages of the tables that describe a database.
constexpr PageNumber ObjectsPage = 2, AccessControlPage = 3;

/// A user table in the catalog.
struct CatalogEntry {
    std::string name;
    bool isLinked = false;      ///< its rows are in another database
    std::string linkedTo;       ///< linked tables: that database
    PageNumber definition = 0;  ///< local tables
    std::vector<std::string> requiredColumns;
};

/// All user tables, ordered by name. Error(Damaged) if the catalog is not readable.
std::vector<CatalogEntry> ReadCatalog(Pager& pages);

}  // namespace jet::storage
