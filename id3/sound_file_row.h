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
    std::int64_t track = 0, minutes = 0, seconds = 0;  ///< 0 where they are Null

    /// The length in whole seconds; nothing where the row knows none.
    std::optional<std::int64_t> Length() const;
};

/// The row that the folder walk would find for a file of this path. Throws Failure.
std::optional<SoundFileRow> FindSoundFileRow(Connection& connection, std::string_view path);

/// The row of a file that is to get another path: that of its path, else the one that an
/// interrupted run has led on already, under the new path or that of a moment
/// (id3/temporary_name.h). No file may have the new path. Throws Failure.
std::optional<SoundFileRow> FindRowToRename(Connection& connection, std::string_view path,
                                            std::string_view newPath);

/// Whether a stored sound file is the file of this path: it ends with it, letter case aside.
bool IsStoredAs(std::string_view soundFile, std::string_view path);

/// A stored sound file, which is the file of the path `from`, with another path in its place.
std::string StoredAs(std::string_view soundFile, std::string_view from, std::string_view to);

/// The length in seconds that minutes and seconds make, if one of them is above 0.
std::optional<std::int64_t> LengthOf(std::int64_t minutes, std::int64_t seconds);

}  // namespace quillon
