#pragma once

namespace quillon {

class PageFolder;
class Run;
class Steps;
struct PickerLocations;

/// Brings the pages of the modern style up to date: covers, thumbnails, pages. Where nothing has
/// changed nothing is written; else the new set takes the old one's place when it is complete.
/// `steps` are those of putting pages into their place.
void BuildModernPages(Run& run, Steps& steps, const PickerLocations& locations, PageFolder& pages);

}  // namespace quillon
