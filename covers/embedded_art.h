#pragma once

#include <span>
#include <string>

#include "library/library.h"
#include "run/run.h"

namespace quillon {

/// The path of the album's cover made of the picture in a tag of one of these songs, the first that
/// has one: "Artist - Album.jpg" or .png in the cover folder, where it is written if nothing of
/// that name is there. "" where no song has a picture, there is no cover folder, or no file can be
/// named like that. A picture that is too large is told of in the log, once. Throws Failure.
std::string TakeEmbeddedArt(Run& run, const AlbumRow& album,
                            std::span<const TrackRow* const> songs);

}  // namespace quillon
