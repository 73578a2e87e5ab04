#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <span>

#include "jet/storage/catalog.h"
#include "jet/storage/file_system.h"
#include "jet/storage/pager.h"

namespace jet::storage {

/// Writes a new database with the tables and rows of `from` to `to`, which is replaced if it
/// exists; how many rows there are. Error(NotSupported) names what the copy would lose, and
/// nothing is written then. Index entries of `from` must not wait.
std::size_t WriteCompacted(Pager& from, std::span<const CatalogEntry> tables,
                           const std::shared_ptr<FileSystem>& files,
                           const std::filesystem::path& to);

}  // namespace jet::storage
