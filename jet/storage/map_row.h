#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "jet/storage/format/page_store.h"

namespace jet::storage {

/// Size of a usage map's row in a new table; it covers 512 pages as long as the bits are inline.
constexpr std::size_t MapRowSize = 69;
/// Pages that one bitmap page covers.
constexpr PageNumber PagesPerBitmap = (PageSize - 4) * 8;

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
    std::size_t BitmapSlots() const { return (Size() - 1) / 4; }
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
    std::optional<Bit> Locate(PageNumber page) const;
    /// Offset and size of the row in its page.
    std::pair<std::size_t, std::size_t> Extent(const Page& page) const;

    PageStore& pages_;
    RowId row_;
};

}  // namespace jet::storage
