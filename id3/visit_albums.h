#pragma once

#include <functional>
#include <string>

#include "platform/files.h"

namespace quillon {

class Run;
class Steps;

/// Goes through the album folders below one folder of the library in the tree layout, artist by
/// artist, which it shows and counts; stops at the next artist after an abort. Artists of the
/// exclude list are left out. Folders that cannot be listed are logged through `steps`.
void VisitAlbums(
    Run& run, Steps& steps, const FolderEntry& root,
    const std::function<void(const std::string& artist, const FolderEntry& album)>& visit);

}  // namespace quillon
