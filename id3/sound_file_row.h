#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/database.h"

namespace quillon {

/// A sound file's row among the owned tracks.
struct SoundFileRow {
    std::int64_t id = 0;
    std::string soundFile;  ///< as stored; something may stand before the path
    std::string title;
};

/// The row that the folder walk would find for a file of this path. Throws Failure.
std::optional<SoundFileRow> FindSoundFileRow(Connection& connection, std::string_view path);

/// Whether a stored sound file is the file of this path: it ends with it, letter case aside.
bool IsStoredAs(std::string_view soundFile, std::string_view path);

}  // namespace quillon
