#pragma once

#include <string_view>

namespace quillon {

class Run;
struct PickerLocations;

/// The steps of making the pages, which come in an order of their own.
enum class PagesStep { ReadAlbums = 2, CopyCovers = 3, LayOut = 4, WritePages = 5 };

/// The album picker mode: makes all pages again below the host's web folder. The new set takes the
/// old one's place only when it is complete; after a failure or an abort the old one stays.
void BuildAlbumPicker(Run& run);

/// Writes all pages into an empty folder and copies the covers into theirs. Whether the set is
/// complete: false after a failure, which is logged, and after an abort.
bool BuildcdjPages(Run& run, const PickerLocations& locations, std::string_view folder);

}  // namespace quillon
