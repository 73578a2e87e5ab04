#include "picker/album_picker.h"

#include <memory>
#include <optional>
#include <string>

#include "picker/albums.h"
#include "picker/controls.h"
#include "picker/covers.h"
#include "picker/folders.h"
#include "picker/forms.h"
#include "picker/layout.h"
#include "picker/links.h"
#include "picker/locations.h"
#include "picker/modern/modern_picker.h"
#include "picker/page_files.h"
#include "picker/pages.h"
#include "picker/stylesheet.h"
#include "platform/database.h"
#include "platform/files.h"
#include "run/counted.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

std::unique_ptr<PickerControls> ControlsFor(const Settings& settings) {
    if (settings.PickerFormatOption) return std::make_unique<PickerForms>();
    return std::make_unique<PickerLinks>();
}

void WritePage(Run& run, std::string_view folder, std::size_t page, std::string_view text) {
    WritePickerFile(run, folder, PageFileName(page), text);
    ++run.counts.pagesWritten;
}

/// Writes the album pages one after the other, as long as nobody stops it.
void WriteAlbumPages(Run& run, const PickerPages& pages, std::string_view folder) {
    std::size_t number = 0;
    for (std::size_t page = 1; page <= pages.PageCount(); ++page) {
        std::string text = pages.BeginPage(page);
        for (const PickerAlbum& album : pages.AlbumsOn(page)) {
            ShowPageItem(run, page, album);
            if (run.AbortRequested) return;
            text += pages.AlbumCell(number++);
            run.CountDone();
        }
        WritePage(run, folder, page, text + pages.EndPage(page));
    }
}

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
    if (run.modern.hasModernPicker) {
        BuildModernPages(run, steps, locations, pages);
    } else {
        ReplacePages(run, steps, pages,
                     [&] { return BuildcdjPages(run, locations, pages.Draft()); });
    }
}

bool ReplacePages(Run& run, Steps& steps, PageFolder& pages, const std::function<bool()>& build) {
    if (!steps.Try(PickerStep::ReplacePages, [&] { pages.Start(); })) return false;
    bool published = false;
    if (build()) {
        // A page that the web server holds open keeps its folder from being renamed.
        published = steps.Try(PickerStep::ReplacePages, [&] { pages.Publish(); });
        if (!published) steps.Try(PickerStep::ReplacePages, [&] { pages.PutBack(); });
    }
    if (!published) run.counts.pagesWritten = 0;
    steps.Try(PickerStep::ReplacePages, [&] { pages.Clear(); });
    return published;
}

bool BuildcdjPages(Run& run, const PickerLocations& locations, std::string_view folder) {
    Steps steps(run, "BuildcdjPages ");
    std::optional<PickerLayout> layout;
    PickerAlbums albums;
    const auto goesOn = [&](PagesStep step, auto&& work) { return GoesOn(run, steps, step, work); };
    return goesOn(PagesStep::LayOut, [&] { layout.emplace(run.settings); }) &&
           goesOn(PagesStep::ReadAlbums,
                  [&] { albums = ReadPickerAlbums(run, *OpenPickerConnection(run)); }) &&
           goesOn(PagesStep::CopyCovers,
                  [&] {
                      const Share share(run, 0, 0.5);
                      CopyCovers(run, steps, locations.webCoverFolder, albums.albums);
                  }) &&
           goesOn(PagesStep::WritePages, [&] {
               const auto controls = ControlsFor(run.settings);
               const PickerPages pages(*layout, *controls, albums, run.settings.coverPath);
               WritePickerFile(run, folder, StylesheetName, PickerStylesheet());
               WritePage(run, folder, 0, pages.Index(run.settings.PickerMinimum));
               const Share share(run, 0.5, 1);
               run.StartCounting(albums.albums.size());
               WriteAlbumPages(run, pages, folder);
           });
}

}  // namespace quillon
