#pragma once

#include <string>

#include "platform/files.h"

namespace quillon {

/// Where a library folder has music, as far as a check looks.
enum class MusicPlace {
    AsExpected,  ///< at least one song lies where the layout has songs
    Deeper,      ///< only further down
    Higher,      ///< only further up
    None,
    Unknown,  ///< some folder could not be looked at, or there were too many
};

struct FoundMusic {
    MusicPlace place = MusicPlace::None;
    std::string example;  ///< a song that lies deeper or higher
};

/// Looks for music as a reconciliation would and stops at the first song, so that it is quick on a
/// library as it should be. Songs lie `depth` folders below the library folder: two in the tree
/// layout, none in the flat one; with `joinsDiscs` in a disc folder below that, too.
FoundMusic LookForMusic(Files& files, const std::string& libraryFolder, std::size_t depth,
                        bool joinsDiscs);

}  // namespace quillon
