#include "picker/locations.h"

#include "platform/basic_text.h"
#include "run/paths.h"

namespace quillon {
namespace {

/// The folder that a path with a backslash at its end lies in; "" when there is none.
std::string ParentOf(std::string_view folder) {
    const std::size_t final = folder.rfind('\\');
    if (final == std::string_view::npos || final == 0) return "";
    const std::size_t last = folder.rfind('\\', final - 1);
    return std::string(folder.substr(0, last == std::string_view::npos ? 0 : last));
}

}  // namespace

PickerLocations LocatePicker(std::string_view appPath, std::string_view coverPath) {
    PickerLocations locations;
    const std::string html = std::string(appPath) + "\\HTML";
    locations.webCoverFolder = AddBackslash(html + Replace(coverPath, "/", "\\"));
    locations.pickerBaseFolder = ParentOf(locations.webCoverFolder);
    // Covers in the top web folder have no parent that the web server could show: pages beside it
    // would never be seen, and a folder there is not ours to delete.
    if (!locations.pickerBaseFolder.starts_with(html)) {
        locations.pickerBaseFolder = html + "\\Quillon";
    }
    locations.pageFolder = locations.pickerBaseFolder + "\\AlbumPicker";
    return locations;
}

std::string PageFileName(std::size_t number) {
    return "AlbumPicker" + std::to_string(number) + ".asp";
}

}  // namespace quillon
