#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "jet/storage/data_page.h"
#include "jet/storage/format/page_store.h"
#include "jet/storage/usage_map_format.h"

namespace jet::storage {

/// Size of a usage map's row in a new table; it covers 512 pages as long as the bits are inline.
constexpr std::size_t MapRowSize = 69;
/// Pages that one bitmap page covers.
constexpr PageNumber PagesPerBitmap = (PageSize - usage_map_format::BitmapBitsOffset) * 8;

/// The stored form of a set of pages: a row that holds the bits itself or names bitmap pages.
/// Knows where each bit lies; what to do about pages without a bit is its users' business.
class MapRow {
  public:
    MapRow(PageStore& pages, RowId row) : pages_(pages), row_(row) {}

    /// Consecutive bits: `bytes` bytes at `offset` of page `in`, for the pages from `first` on.
    struct Stretch {
        PageNumber first = 0;
        PageNumber in = 0;
        std::size_t offset = 0, bytes = 0;

        PageNumber End() const { return first + static_cast<PageNumber>(bytes * 8); }
    };
    /// All bits that the map has, in page order.
    std::vector<Stretch> Stretches() const;

    /// Whether the page's bit is set; none where the map has no bit for it.
    std::optional<bool> Get(PageNumber page) const;
    /// False where the map has no bit for the page.
    bool Put(PageNumber page, bool value);

    /// Calls `visit` for every page whose bit is set, in order.
    template <typename Visit>
    void ForEach(Visit visit) const {
        for (const Stretch& stretch : Stretches()) {
            const auto page = pages_.Read(stretch.in);
            for (std::size_t byte = 0; byte < stretch.bytes; ++byte) {
                const unsigned bits = (*page)[stretch.offset + byte];
                for (unsigned bit = 0; bits >> bit != 0; ++bit) {
                    if ((bits >> bit & 1U) == 0) continue;
                    visit(stretch.first + static_cast<PageNumber>(byte * 8 + bit));
                }
            }
        }
    }

    bool IsInline() const;
    std::size_t Size() const;
    /// The row's bytes for changing.
    std::span<std::uint8_t> Modify();
    RowId Where() const { return row_; }

    /// Turns the row into a list of bitmap pages, all missing.
    void MakeReference();
    /// How many bitmap pages a reference row can name, and which one covers a stretch of
    /// PagesPerBitmap pages (0: none).
    std::size_t BitmapSlots() const { return BitmapSlots(Size()); }
    PageNumber BitmapPage(std::size_t stretch) const;
    void SetBitmapPage(std::size_t stretch, PageNumber page);

    /// Makes a page an empty bitmap page with every byte the same.
    static void MakeBitmapPage(Page& page, std::uint8_t content);

  private:
    struct Bit {
        PageNumber in;
        std::size_t byte;
        std::uint8_t mask;
    };
    /// The same for a row of that size.
    static std::size_t BitmapSlots(std::size_t size) {
        return (size - usage_map_format::BitmapPagesOffset) / usage_map_format::BitmapPageSize;
    }
    /// Where in the row a reference map names the bitmap page of a stretch.
    static std::size_t PlaceOf(std::size_t stretch) {
        return usage_map_format::BitmapPagesOffset + stretch * usage_map_format::BitmapPageSize;
    }
    std::optional<Bit> Locate(PageNumber page) const;
    /// Offset and size of the row in its page.
    std::pair<std::size_t, std::size_t> Extent(const Page& page) const;

    PageStore& pages_;
    RowId row_;
};

/// Makes rows for new usage maps, on pages of their own.
class MapPages {
  public:
    /// Begins on `page`, a data page without owner; 0: on a page to be made.
    explicit MapPages(PageStore& pages, PageNumber page = 0) : pages_(pages), page_(page) {}

    /// The row of a new, empty map.
    RowId Add() {
        if (page_ == 0 || DataPageView(*pages_.Read(page_), page_).RoomForNew() < MapRowSize) {
            page_ = pages_.Allocate();
            MakeDataPage(pages_.Modify(page_), data_page_format::NoOwner);
        }
        return {page_, AddRow(pages_.Modify(page_), page_, MapRowSize, RowKind::Home)};
    }

  private:
    PageStore& pages_;
    PageNumber page_;
};

}  // namespace jet::storage
