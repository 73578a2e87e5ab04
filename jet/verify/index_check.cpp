#include "jet/verify/index_check.h"

#include <algorithm>
#include <utility>

#include "jet/error.h"
#include "jet/storage/format/values.h"
#include "jet/storage/index/index_key.h"
#include "jet/storage/index/index_page.h"

namespace jet::verify {

using storage::PageNumber;
using storage::RowId;

namespace {

constexpr std::size_t DeepestTree = 32, RowSize = 4;

}  // namespace

IndexCheck::IndexCheck(const Shape& shape, std::size_t index, TableData& data, Pages& pages,
                       UsageMaps& maps, Findings& findings)
    : shape_(shape),
      index_(shape.indexes[index]),
      wanted_(data.Wanted(index)),
      data_(data),
      pages_(pages),
      maps_(maps),
      findings_(findings),
      where_("table " + shape.name + " index " + index_.name) {
    for (const IndexPart& part : index_.parts)
        allNullKey_.push_back(storage::NullKey(part.ascending));
}

void IndexCheck::Run() {
    ++findings_.Counts().indexes;
    const std::vector<PageNumber> owned = maps_.Read(index_.map, where_);
    try {
        Walk(index_.root, 0);
    } catch (const Error& error) {
        if (error.Kind() != ErrorKind::Damaged) throw;
        findings_.Fault(where_, error.what());
        return;  // which entries are missing cannot be said
    }
    CheckLinks(leaves_);
    if (!last_.leaf) CheckLinks({last_});  // the root, which came last
    findings_.Counts().entries += met_.Count();
    if (mustBeExplained_ || met_ != wanted_.entries || (index_.required && wanted_.hasNull))
        Explain();
    std::ranges::sort(reached_);
    if (reached_ != owned)
        findings_.Fault(where_, "the map of its pages lists " + std::to_string(owned.size()) +
                                    " pages, which are not the " + std::to_string(reached_.size()) +
                                    " of its tree");
}

/// Goes through the tree below `page` in order; returns its greatest entry.
// NOLINTNEXTLINE(misc-no-recursion): as deep as the tree, which is limited
Bytes IndexCheck::Walk(PageNumber page, std::size_t depth) {
    if (depth == DeepestTree) throw Error(ErrorKind::Damaged, "the tree is too deep");
    if (!pages_.Claim(page, PageUse::Index, where_))
        throw Error(ErrorKind::Damaged, "the tree is not whole");
    reached_.push_back(page);
    const auto content = pages_.Read(page);
    const storage::IndexPageView view(*content, page, shape_.page);
    const auto freeBytes = storage::Load<std::uint16_t>(*content, 2);
    if (freeBytes != storage::EntryRoom - view.UsedBytes())
        findings_.Fault(where_, "page " + std::to_string(page) + " has a wrong free-space word");
    if (view.Count() == 0 && view.PrefixLength() != 0)
        findings_.Fault(where_, "page " + std::to_string(page) + " is empty and has a prefix");
    const Neighbours self{page, view.Previous(), view.Next(), view.IsLeaf()};

    Bytes greatest;
    if (view.IsLeaf()) {
        leaves_.push_back(self);
        if (view.Count() == 0 && depth != 0)
            findings_.Fault(where_, "page " + std::to_string(page) + " is empty");
        for (std::size_t i = 0; i < view.Count(); ++i) {
            view.CopyEntry(i, entry_);
            MeetEntry();
        }
        if (view.Count() != 0) greatest = lastEntry_;
    } else {
        if (view.ChildCount() == 0)
            throw Error(ErrorKind::Damaged, "a page of the tree has no children");
        std::vector<Neighbours> children;
        for (std::size_t i = 0; i < view.ChildCount(); ++i) {
            greatest = Walk(view.Child(i), depth + 1);
            children.push_back(last_);
            if (i < view.Count() && !view.IsEntry(i, greatest))
                findings_.Fault(where_, "page " + std::to_string(page) +
                                            " does not know the last entry of page " +
                                            std::to_string(last_.page));
        }
        // Leaves are linked over the whole index, which is checked at its end.
        if (!children.front().leaf) CheckLinks(children);
    }
    last_ = self;
    return greatest;
}

void IndexCheck::CheckLinks(const std::vector<Neighbours>& level) {
    for (std::size_t i = 0; i < level.size(); ++i) {
        const PageNumber previous = i == 0 ? 0 : level[i - 1].page;
        const PageNumber next = i + 1 == level.size() ? 0 : level[i + 1].page;
        if (level[i].previous != previous || level[i].next != next)
            findings_.Fault(where_, "page " + std::to_string(level[i].page) +
                                        " is not linked with its neighbours");
    }
}

/// The last entry and this one change places: no memory is asked for.
void IndexCheck::MeetEntry() {
    if (!lastEntry_.empty() && storage::CompareBytes(lastEntry_, entry_) >= 0)
        findings_.Fault(where_, "entries are out of order");
    met_.Add(index_.keysAreKnown ? std::span<const std::uint8_t>(entry_)
                                 : std::span<const std::uint8_t>(entry_).last(RowSize));
    if (index_.unique && HasUniqueKeyAgain()) mustBeExplained_ = true;
    std::swap(entry_, lastEntry_);
}

/// Any number of rows may have nothing but Null.
bool IndexCheck::HasUniqueKeyAgain() const {
    if (lastEntry_.size() != entry_.size()) return false;
    const auto key = std::span(entry_).first(entry_.size() - RowSize);
    return std::equal(key.begin(), key.end(), lastEntry_.begin()) &&
           !std::ranges::equal(key, allNullKey_);
}

/// Goes through the leaves once more, entry by entry.
void IndexCheck::Explain() {
    seen_.assign(data_.Rows().size(), false);
    lastEntry_.clear();
    for (const Neighbours& leaf : leaves_) {
        const auto content = pages_.Read(leaf.page);
        const storage::IndexPageView view(*content, leaf.page, shape_.page);
        for (std::size_t i = 0; i < view.Count(); ++i) {
            view.CopyEntry(i, entry_);
            CheckEntry(entry_);
            std::swap(entry_, lastEntry_);
        }
    }
    CheckMissing();
}

void IndexCheck::CheckEntry(std::span<const std::uint8_t> keyAndRow) {
    const auto key = keyAndRow.first(keyAndRow.size() - RowSize);
    const auto pointer = keyAndRow.last(RowSize);
    const RowId id{static_cast<PageNumber>(pointer[0] << 16 | pointer[1] << 8 | pointer[2]),
                   pointer[3]};
    const auto& rows = data_.Rows();
    const auto row = std::ranges::lower_bound(rows, id);
    if (row == rows.end() || *row != id) {
        findings_.Fault(where_, "an entry names " + Place(id) + ", where no row is");
    } else if (seen_[static_cast<std::size_t>(row - rows.begin())]) {
        findings_.Fault(where_, "row " + Place(id) + " has two entries");
    } else {
        seen_[static_cast<std::size_t>(row - rows.begin())] = true;
        CheckKey(id, key);
    }
}

void IndexCheck::CheckKey(RowId id, std::span<const std::uint8_t> key) {
    const RowBytes found = data_.Find(id);
    const RowView row(found.bytes, shape_);
    if (!row.Fault().empty()) return;  // told already
    const std::string where = where_ + " row " + Place(id);
    const bool allNull = AllNull(shape_, index_, row);
    const bool sameAsLast = lastEntry_.size() == key.size() + RowSize &&
                            std::equal(key.begin(), key.end(), lastEntry_.begin());
    if (index_.unique && sameAsLast && !allNull)
        findings_.Fault(where, "another row has the same values in this unique index");
    if (index_.required && AnyNull(shape_, index_, row))
        findings_.Fault(where, "a column of this index is Null and must not be");
    if (index_.ignoresNulls && allNull)
        findings_.Fault(where, "the row has an entry although all its columns are Null");
    if (!index_.keysAreKnown) return;
    Bytes expected;
    for (const IndexPart& part : index_.parts)
        if (!data_.AppendKey(expected, row, part)) return;  // told already
    if (!std::ranges::equal(expected, key))
        findings_.Fault(where, "the entry is not the one that the row's values make");
}

void IndexCheck::CheckMissing() {
    const auto& rows = data_.Rows();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (seen_[i]) continue;
        const RowBytes found = data_.Find(rows[i]);
        const RowView row(found.bytes, shape_);
        if (!row.Fault().empty()) continue;
        if (!index_.ignoresNulls || !AllNull(shape_, index_, row))
            findings_.Fault(where_, "row " + Place(rows[i]) + " has no entry");
    }
}

}  // namespace jet::verify
