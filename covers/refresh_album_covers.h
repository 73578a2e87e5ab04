#pragma once

namespace quillon {

class Run;

/// Keeps the albums' `ImageFile` in step with the cover images on disk: albums follow images that
/// have moved, lose images that are gone, and get new images named "Artist - Album". What cannot be
/// tied to an album is logged.
///
/// Where no images are to be looked for, or a folder of images is not there or cannot be listed
/// (which is logged), no album is changed.
void RefreshAlbumCovers(Run& run);

}  // namespace quillon
