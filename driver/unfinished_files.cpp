#include "driver/unfinished_files.h"

#include <string>
#include <string_view>

#include "picker/locations.h"
#include "platform/windows_path.h"
#include "run/paths.h"
#include "run/run.h"

namespace quillon {
namespace {

std::string FolderAround(std::string_view path) {
    return AddBackslash(ParentFolder(path));
}

}  // namespace

void RemoveUnfinishedFiles(Run& run) {
    const Settings& settings = run.settings;
    const std::string host = run.host.GetAppPath();
    for (const std::string& folder :
         {FolderAround(settings.Nirvis_CDJ_DB), settings.PlayListPath, settings.PlayListPath2,
          FolderAround(FolderPath(settings.PlayListPath)),
          FolderAround(FolderPath(settings.PlayListPath2)), settings.AlbumCoverFolder,
          host + "\\Data\\Quillon", LocatePicker(host, settings.coverPath).webCoverFolder}) {
        if (NamesFolder(folder)) run.files.RemoveUnfinished(folder);
    }
}

}  // namespace quillon
