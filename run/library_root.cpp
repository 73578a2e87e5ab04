#include "run/library_root.h"

#include "run/run.h"

namespace quillon {

std::string WhyNoLibraryFolders(Run& run) {
    const std::string& root = run.settings.LibraryRoot;
    const bool isThere = run.files.FolderExists(root);
    // One that holds folders was not there when the run began.
    if (!run.settings.LibraryDepthOption || !isThere || !run.files.SubFolders(root).empty())
        return "No folder at library root " + root;
    return "Library root " + root +
           " holds neither a folder nor a .txt file that names one, and LibraryDepthOption=1 looks "
           "for the music in those. Set it to 0, or name the folder above";
}

}  // namespace quillon
