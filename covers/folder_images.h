#pragma once

#include <string>
#include <string_view>

#include "library/library.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {

/// Gives an album this image, "" for none, and counts that.
void SetImageFile(Run& run, AlbumRow& album, const std::string& path);

/// Whether a file in an album's folder is the album's cover by its name: cover, folder, front or
/// AlbumArt, as .jpg, .jpeg or .png.
bool IsFolderImage(std::string_view fileName);

/// Gives albums that have no image the one in the folder of their songs, and takes away such images
/// that are gone. Nothing is concluded from what cannot be looked at. Failures are logged.
void TakeFolderImages(Run& run, Steps& steps);

}  // namespace quillon
