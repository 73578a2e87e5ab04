#pragma once

#include <memory>
#include <span>

#include "jet/storage/row_pages.h"

namespace jet::storage {

/// The rows of a table as byte strings. A row that outgrew its page lies elsewhere, but keeps the
/// RowId of the place where it was made.
class TableRows {
  public:
    TableRows(PageStore& pages, PageNumber definition, RowId owned, RowId free)
        : pages_(pages, definition, owned, free) {}

    /// A row's bytes; they stay as they are until their page changes.
    struct Stored {
        std::shared_ptr<const Page> page;
        std::span<const std::uint8_t> bytes;
        RowId where;  ///< of the bytes: not the row's own id when it has moved
    };
    /// Error(NotFound) if there is no such row.
    Stored Read(RowId row) const;

    RowId Add(std::span<const std::uint8_t> bytes) { return pages_.Add(bytes, RowKind::Home); }
    RowId Append(std::span<const std::uint8_t> bytes) {
        return pages_.Append(bytes, RowKind::Home);
    }
    void Replace(RowId row, std::span<const std::uint8_t> bytes);
    /// Overwrites bytes in the middle of a row, which lie there in `old`.
    void Overwrite(const Stored& row, std::span<const std::uint8_t> old,
                   std::span<const std::uint8_t> bytes);
    void Remove(RowId row);
    void RemoveAll() { pages_.RemoveAll(); }

    /// Calls `visit(RowId, bytes)` for each row in page order and then slot order.
    template <typename Visit>
    void ForEach(Visit visit) const {
        for (const PageNumber number : pages_.Pages()) {
            const auto page = pages_.Read(number);
            const DataPageView view(*page, number);
            for (std::size_t i = 0; i < view.SlotCount(); ++i) {
                const Slot slot = view.At(i);
                if (slot.hidden) continue;  // deleted, or reached through its pointer
                const RowId row{number, static_cast<std::uint8_t>(i)};
                if (slot.moved) {
                    const Stored stored = Read(row);
                    visit(row, stored.bytes);
                } else {
                    visit(row, view.BytesOf(slot));
                }
            }
        }
    }

    std::vector<PageNumber> Pages() const { return pages_.Pages(); }
    /// Needed after changes were undone.
    void Forget() { pages_.Forget(); }

  private:
    RowPages pages_;
};

}  // namespace jet::storage
