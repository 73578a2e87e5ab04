#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "picker/modern/catalogue.h"

namespace quillon {

/// Albums, counted from 0, below one heading.
struct Section {
    std::string heading;
    std::vector<std::size_t> albums;
};

/// Consecutive albums of a section that are on one page.
struct Piece {
    std::size_t section = 0;
    std::size_t first = 0, count = 0;  ///< among the section's albums
};

/// One way to look through all albums, spread over pages.
struct PickerView {
    std::string caption;  ///< in the navigation: "Artists"
    std::string title;    ///< of its pages: "Albums by artist"
    std::string stem;     ///< of its pages' file names
    std::vector<Section> sections;
    std::vector<std::vector<Piece>> pages = {};  ///< at least one

    /// The name of a page's file, counted from 0. The first page of all is the index.
    std::string FileName(std::size_t page) const;

    /// The page, counted from 0, on which a section begins, and its place there.
    std::size_t PageOfSection(std::size_t section) const;
    static std::string SectionPlace(std::size_t section);
};

/// A page has so many albums at most: more would take a browser too long to show.
constexpr std::size_t MostOnViewPage = 240;

/// The newest albums are so many at most.
constexpr std::size_t MostNewAlbums = 240;

/// The views of a catalogue: by artist; by genre, where genres are known; the newest first, where
/// it is known when albums came. Albums below a heading are in the catalogue's order.
std::vector<PickerView> ViewsOf(const Catalogue& catalogue);

}  // namespace quillon
