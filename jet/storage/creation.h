#pragma once

#include <filesystem>
#include <memory>
#include <span>

#include "jet/schema.h"
#include "jet/storage/catalog_writer.h"
#include "jet/storage/file_system.h"
#include "jet/storage/map_row.h"
#include "jet/storage/pager.h"
#include "jet/storage/table_layout.h"

namespace jet::storage {

/// Writes a new database with these tables to `path`, which is replaced if it exists.
void WriteNewDatabase(const std::shared_ptr<FileSystem>& files, const std::filesystem::path& path,
                      std::span<const TableDefinition> tables);

/// Gives a layout its maps and index roots and writes it.
void WriteTable(PageStore& pages, MapPages& maps, TableLayout& layout);

/// Gives an index of a layout its map and an empty tree.
void MakeIndex(PageStore& pages, MapPages& maps, PageNumber table, RealIndexLayout& index);

/// Adds a table without rows to a database and its catalog; the page that names it.
PageNumber AddTable(Pager& pages, CatalogWriter& catalog, const TableDefinition& table);

}  // namespace jet::storage
