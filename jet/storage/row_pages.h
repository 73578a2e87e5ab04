#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "jet/storage/data_page.h"
#include "jet/storage/format/page_store.h"
#include "jet/storage/usage_map.h"

namespace jet::storage {

/// The data pages that belong to one owner (the rows of a table, the long values of a column), with
/// the map of all of them and the map of those that have room. Which page fits a new row is known
/// without looking at the pages.
class RowPages {
  public:
    /// `owner` is the word in the pages that says whose they are. `pages` must outlive this object.
    RowPages(PageStore& pages, std::uint32_t owner, RowId owned, RowId free)
        : pages_(pages), owner_(owner), owned_(pages, owned), free_(pages, free) {}

    PageStore& Source() const { return pages_; }

    /// All pages of the owner in order.
    std::vector<PageNumber> Pages() const { return owned_.Pages(); }

    /// A page of this owner. Error(Damaged) if it is another's.
    std::shared_ptr<const Page> Read(PageNumber page) const;

    /// Stores a row where there is room.
    RowId Add(std::span<const std::uint8_t> row, RowKind kind);
    /// Stores a row behind all others.
    RowId Append(std::span<const std::uint8_t> row, RowKind kind);
    /// Whether the row's page has room for another size of it.
    bool Fits(RowId row, std::size_t size) const;
    /// Gives a row other content; the caller has checked that it fits.
    void Replace(RowId row, std::span<const std::uint8_t> content, RowKind kind);
    /// Overwrites the row's first bytes and sets its kind; the row keeps its size.
    void Redirect(RowId row, RowId target);
    void Remove(RowId row);
    /// Gives all pages back, with all rows on them.
    void RemoveAll();

    /// Forgets what was learned about room; needed after changes were undone.
    void Forget();

  private:
    void LearnRoom();
    void NoteRoom(PageNumber page, bool mayJoin);
    RowId AddTo(PageNumber number, std::span<const std::uint8_t> row, RowKind kind);
    PageNumber PageWithRoom(std::size_t size);
    PageNumber NewPage();
    Page& Modify(PageNumber page);

    PageStore& pages_;
    std::uint32_t owner_;
    UsageMap owned_, free_;
    std::optional<PageNumber> last_;  ///< where rows are appended
    bool roomKnown_ = false;
    /// The pages of the free map, by room and by number.
    std::set<std::pair<std::size_t, PageNumber>> byRoom_;
    std::unordered_map<PageNumber, std::size_t> roomOf_;
};

}  // namespace jet::storage
