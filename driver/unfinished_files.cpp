#include "driver/unfinished_files.h"

#include <string>
#include <string_view>

#include "picker/locations.h"
#include "run/paths.h"
#include "run/run.h"

namespace quillon {
namespace {

std::string FolderOf(std::string_view path) {
    return std::string(path.substr(0, path.rfind('\\') + 1));
}

}  // namespace

void RemoveUnfinishedFiles(Run& run) {
    const Settings& settings = run.settings;
    const std::string host = run.host.GetAppPath();
    for (const std::string& folder :
         {FolderOf(settings.Nirvis_CDJ_DB), settings.PlayListPath, settings.PlayListPath2,
          FolderOf(FolderPath(settings.PlayListPath)), FolderOf(FolderPath(settings.PlayListPath2)),
          settings.AlbumCoverFolder, host + "\\Data\\Quillon",
          LocatePicker(host, settings.coverPath).webCoverFolder}) {
        if (NamesFolder(folder)) run.files.RemoveUnfinished(folder);
    }
}

}  // namespace quillon
