#pragma once

#include <filesystem>
#include <memory>
#include <span>

#include "jet/schema.h"
#include "jet/storage/file_system.h"

namespace jet::storage {

/// Writes a new database with these tables to `path`, which is replaced if it exists.
void WriteNewDatabase(const std::shared_ptr<FileSystem>& files, const std::filesystem::path& path,
                      std::span<const TableDefinition> tables);

}  // namespace jet::storage
