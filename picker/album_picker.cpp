#include "picker/album_picker.h"

#include "picker/folders.h"
#include "picker/locations.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class PickerStep { Locate = 1, ReplacePages = 2 };

}  // namespace

void BuildAlbumPicker(Run& run) {
    Steps steps(run, "BuildAlbumPicker - Album Picker File may be open");
    PickerLocations locations;
    steps.Try(PickerStep::Locate, [&] {
        locations = LocatePicker(run.host.GetAppPath(), run.settings.coverPath);
        run.ShowItem("1. Generating Album Picker Files\"");
    });
    if (run.AbortRequested || locations.pageFolder.empty()) return;

    PageFolder pages(run.files, locations.pageFolder);
    if (!steps.Try(PickerStep::ReplacePages, [&] { pages.Start(); })) return;
    bool published = false;
    if (BuildcdjPages(run, locations, pages.Draft())) {
        // A page that the web server holds open keeps its folder from being renamed.
        published = steps.Try(PickerStep::ReplacePages, [&] { pages.Publish(); });
        if (!published) steps.Try(PickerStep::ReplacePages, [&] { pages.PutBack(); });
    }
    if (!published) run.counts.pagesWritten = 0;
    steps.Try(PickerStep::ReplacePages, [&] { pages.Clear(); });
}

}  // namespace quillon
