#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "platform/files.h"
#include "playlists/m3u.h"

namespace quillon {

/// A list in UTF-8 for the players of this machine. Songs are named by local paths; relative to the
/// list's folder where both have a folder in common, so that the list works wherever that is moved
/// or shared to.
struct LocalList {
    std::string bytes;
    std::size_t unknownCount = 0;  ///< songs whose paths lead nowhere here; they stand as stored
    std::string unknown;           ///< the first of them
};

/// `target` is the list's own path, as Windows names it. Failure where nobody can tell where a song
/// is.
LocalList MakeLocalList(Files& files, const std::string& target, std::span<const M3uSong> songs);

}  // namespace quillon
