#pragma once

#include <string>
#include <string_view>

#include "picker/modern/catalogue.h"

namespace quillon {

constexpr std::string_view ScriptName = "AlbumPicker.js";
constexpr std::string_view AlbumsDataName = "AlbumPickerAlbums.js";
constexpr std::string_view TracksDataName = "AlbumPickerTracks.js";

/// What the script searches, as calls of it: all artists with their albums, in the catalogue's
/// order, each with its thumbnail, or else with its initials and the number of their colours.
/// ASCII.
std::string AlbumsData(const Catalogue& catalogue);

/// The titles of all tracks, album by album.
std::string TracksData(const Catalogue& catalogue);

/// A file's name with its content's hash behind it: a browser that keeps the file of a name asks
/// for another one as soon as that has changed.
std::string VersionedName(std::string_view name, std::string_view content);

}  // namespace quillon
