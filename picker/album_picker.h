#pragma once

#include <functional>
#include <string_view>

namespace quillon {

class PageFolder;
class Run;
class Steps;
struct PickerLocations;

/// The steps of putting the pages into their place.
enum class PickerStep { Locate = 1, ReplacePages = 2 };

/// The steps of making the pages, which come in an order of their own.
enum class PagesStep { ReadAlbums = 2, CopyCovers = 3, LayOut = 4, WritePages = 5 };

/// The album picker mode: makes all pages again below the host's web folder. The new set takes the
/// old one's place only when it is complete; after a failure or an abort the old one stays.
void BuildAlbumPicker(Run& run);

/// Has a new set of pages built in its draft folder and puts it into its place, if it is complete.
/// Whether it is there now.
bool ReplacePages(Run& run, Steps& steps, PageFolder& pages, const std::function<bool()>& build);

/// Writes all pages into an empty folder and copies the covers into theirs. Whether the set is
/// complete: false after a failure, which is logged, and after an abort.
bool BuildcdjPages(Run& run, const PickerLocations& locations, std::string_view folder);

}  // namespace quillon
