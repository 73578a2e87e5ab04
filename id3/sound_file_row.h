#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "library/library.h"

namespace quillon {

/// The own track of a file that is to get another path: that of its path, else the one that an
/// interrupted run has led on already, under the new path or that of a moment
/// (id3/temporary_name.h). No file may have the new path. Null where there is none.
TrackRow* FindRowToRename(Library& library, std::string_view path, std::string_view newPath);

/// Whether a stored sound file is the file of this path: it ends with it, letter case aside.
bool IsStoredAs(std::string_view soundFile, std::string_view path);

/// A stored sound file, which is the file of the path `from`, with another path in its place.
std::string StoredAs(std::string_view soundFile, std::string_view from, std::string_view to);

/// The length in seconds that minutes and seconds make, if one of them is above 0.
std::optional<std::int64_t> LengthOf(std::int64_t minutes, std::int64_t seconds);
/// A row's.
std::optional<std::int64_t> LengthOf(const TrackRow& track);

}  // namespace quillon
