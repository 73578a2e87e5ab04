#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "jet/database.h"

namespace quillon {

/// The Windows path under which a database knows this music folder, worked out from the files that
/// its owned tracks name: "E:\Jukebox\Music". Nothing when no file of theirs is found there, or
/// when they do not agree.
std::optional<std::string> StoredMusicFolder(jet::Database& database,
                                             const std::filesystem::path& music);

}  // namespace quillon
