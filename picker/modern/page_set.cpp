#include "picker/modern/page_set.h"

#include <cstddef>

#include "picker/album_picker.h"
#include "picker/locations.h"
#include "picker/modern/assets.h"
#include "picker/modern/search_data.h"
#include "picker/pages.h"
#include "platform/files.h"
#include "run/file_bytes.h"
#include "run/run.h"

namespace quillon {

ModernPageSet::ModernPageSet(Run& run, const PickerLayout& layout, const Catalogue& catalogue)
    : run_(run),
      albumsData_(AlbumsData(catalogue)),
      tracksData_(TracksData(catalogue)),
      views_(ViewsOf(catalogue)),
      buttons_(MakePlayerButtons(run.settings.PickerFormatOption)),
      frame_(views_, *buttons_, layout, run.settings.coverPath,
             {.albumsUrl = VersionedName(AlbumsDataName, albumsData_),
              .tracksUrl = VersionedName(TracksDataName, tracksData_)}),
      viewPages_(frame_, catalogue, layout, run.settings.PickerMinimum),
      albumPages_(frame_, *buttons_, catalogue, layout, views_.front()),
      albumCount_(catalogue.Count()) {}

bool ModernPageSet::Give(const Take& take) const {
    if (!take(StylesheetName, PickerAsset(StylesheetName)) ||
        !take(ScriptName, PickerAsset(ScriptName)) || !take(AlbumsDataName, albumsData_) ||
        !take(TracksDataName, tracksData_)) {
        return false;
    }
    for (const PickerView& view : views_) {
        for (std::size_t page = 0; page < view.pages.size(); ++page) {
            run_.ProcessEvents();
            if (run_.AbortRequested) return false;
            if (!take(view.FileName(page), viewPages_.Page(view, page))) return false;
        }
    }
    run_.StartCounting(albumCount_);
    for (std::size_t page = 1; page <= albumPages_.Count(); ++page) {
        const std::string text = albumPages_.Page(page, [&](const PickerAlbum& album) {
            ShowPageItem(run_, page, album);
            run_.CountDone();
            return !run_.AbortRequested;
        });
        if (run_.AbortRequested || !take(PageFileName(page), text)) return false;
    }
    return true;
}

bool ModernPageSet::IsIn(std::string_view folder) const {
    if (!run_.files.FolderExists(folder)) return false;
    std::size_t count = 0;
    const bool areAllThere = Give([&](std::string_view name, const std::string& text) {
        ++count;
        return HoldsJust(run_.files, std::string(folder) + '\\' + std::string(name), text);
    });
    if (!areAllThere) return false;
    const FolderNames names = run_.files.NamesIn(folder);
    return names.folders.empty() && names.files.size() == count;
}

bool ModernPageSet::WriteTo(std::string_view folder) const {
    return Give([&](std::string_view name, const std::string& text) {
        WritePickerFile(run_, folder, name, text);
        if (name.ends_with(".asp")) ++run_.counts.pagesWritten;
        return true;
    });
}

}  // namespace quillon
