#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "picker/albums.h"
#include "picker/controls.h"
#include "picker/layout.h"

namespace quillon {

/// The stylesheet that all pages link to; it lies beside them.
constexpr std::string_view StylesheetName = "AlbumPicker.css";

/// Writes the texts of the pages.
class PickerPages {
  public:
    /// All three must outlive this object. `coverPath` is the covers' web path.
    PickerPages(const PickerLayout& layout, const PickerControls& controls,
                const PickerAlbums& albums, std::string_view coverPath);

    std::size_t PageCount() const { return layout_.Pages(albums_.albums.size()); }

    /// Thumbnails of all albums. `leastTracks` is shown to the reader.
    std::string Index(int leastTracks) const;

    /// The albums of a page, counted from 1.
    std::span<const PickerAlbum> AlbumsOn(std::size_t page) const;

    /// The beginning of an album page, one album after the other, and its end.
    std::string BeginPage(std::size_t page) const;
    std::string AlbumCell(std::size_t album) const;
    std::string EndPage(std::size_t page) const;

  private:
    std::string Begin(std::string_view title, std::string_view heading) const;
    std::string End(std::size_t page) const;
    std::string BeginGrid(std::string_view style) const;
    /// What separates a cell from the ones before it: nothing, or the start of a new row.
    std::string_view RowBreak(std::size_t cell) const;
    std::string Thumbnail(std::size_t album) const;
    std::string TrackTable(const PickerAlbum& album) const;
    std::string CoverUrl(const PickerAlbum& album) const;

    const PickerLayout& layout_;
    const PickerControls& controls_;
    const PickerAlbums& albums_;
    std::string coverUrl_;
};

}  // namespace quillon
