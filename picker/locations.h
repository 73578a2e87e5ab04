#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// The host's page that plays what the picker's links ask for.
constexpr std::string_view PlayerPage = "/Quillon/Quillon.asp";

/// Where the pages are on the web server.
constexpr std::string_view PageUrlBase = "/Quillon/AlbumPicker/";

/// The folders that a picker build writes to.
struct PickerLocations {
    std::string webCoverFolder;    ///< cover images as the web server sees them; ends in "\"
    std::string pickerBaseFolder;  ///< holds the cover folder and the page folder
    std::string pageFolder;
};

/// Computes them. `appPath` is the host's folder, `coverPath` the setting: "/Quillon/albumcovers/"
/// gives `<app>\HTML\Quillon\albumcovers\` and pages in `<app>\HTML\Quillon\AlbumPicker`.
PickerLocations LocatePicker(std::string_view appPath, std::string_view coverPath);

/// A page's file name: AlbumPicker0.asp is the index, the album pages count from 1.
std::string PageFileName(std::size_t number);

}  // namespace quillon
