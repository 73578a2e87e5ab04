#pragma once

#include <string_view>
#include <vector>

#include "picker/albums.h"

namespace quillon {

class Run;
class Steps;

/// Copies the albums' cover images into the web cover folder, which is made where it is missing,
/// and gives each album the name of its copy. Copies that are there already are left alone. An
/// album without an image, or with one that cannot be copied (which is logged through `steps`),
/// gets the placeholder. Stops early after an abort. Failure: the folder cannot be made.
void CopyCovers(Run& run, Steps& steps, std::string_view webCoverFolder,
                std::vector<PickerAlbum>& albums);

}  // namespace quillon
