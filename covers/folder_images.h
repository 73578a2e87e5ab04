#pragma once

#include <string>
#include <string_view>

#include "library/library.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {

/// Gives an album this image, "" for none, and counts that.
void SetImageFile(Run& run, AlbumRow& album, const std::string& path);

/// Gives albums that have no image the one in the folder of their songs, or else the one in a
/// song's tag, which is written into the cover folder, and takes away such images that are gone.
/// Nothing is concluded from what cannot be looked at. Failures are logged.
void TakeFolderImages(Run& run, Steps& steps);

}  // namespace quillon
