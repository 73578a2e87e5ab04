#pragma once

#include <filesystem>
#include <vector>

#include "jet/schema.h"

namespace quillon {

/// The seven tables of a jukebox database as the tool makes them: three of the jukebox software,
/// four of the tool's own.
const std::vector<jet::TableDefinition>& JukeboxTables();

/// Makes a new jukebox database without albums, with the names of all genres that a tag can carry.
/// The path must not exist; nothing is left there on failure. Throws jet::Error.
void CreateJukeboxDatabase(const std::filesystem::path& path);

}  // namespace quillon
