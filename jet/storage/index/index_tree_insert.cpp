// How entries come into a tree: leaf by leaf, many at a time.
#include <algorithm>
#include <utility>

#include "jet/error.h"
#include "jet/storage/index/index_page.h"
#include "jet/storage/index/index_tree.h"

namespace jet::storage {

namespace {

EntryBytes KeyOf(EntryBytes entry) {
    return entry.first(entry.size() - EntryRowSize);
}

}  // namespace

void CheckLength(std::span<const std::uint8_t> key) {
    if (key.size() > LongestKey)
        throw Error(ErrorKind::TooLong, "The indexed values of a row are too long together.");
}

void IndexTree::Insert(std::span<const std::uint8_t> key, RowId row) {
    CheckLength(key);
    EntryBatch single;
    single.Add(key, row);
    Insert(single, 1);
}

IndexTree::Inserted IndexTree::Insert(const EntryBatch& batch, std::size_t mostLeaves) {
    Inserted all;
    for (std::size_t leaf = 0; leaf < mostLeaves && all.entries < batch.Count(); ++leaf) {
        const Inserted some = InsertIntoLeaf(batch, all.entries);
        all.entries += some.entries;
        all.newKeys += some.newKeys;
    }
    return all;
}

/// Puts all entries of the batch from `first` on that belong on one leaf there.
IndexTree::Inserted IndexTree::InsertIntoLeaf(const EntryBatch& batch, std::size_t first) {
    memory_.Clear();
    std::optional<Bytes> greatest;
    const Path path = Descend(batch.At(first), &greatest);
    std::size_t count = 1;
    while (first + count < batch.Count() &&
           (!greatest || CompareBytes(batch.At(first + count), *greatest) <= 0))
        ++count;

    const auto [leaf, place] = path.back();
    const auto page = Read(leaf);
    const IndexPageView view(*page, leaf, definition_);
    const bool behindAll = place == view.Count();
    if (count == 1 && (behindAll || !view.IsEntry(place, batch.At(first)))) {
        const std::size_t newKeys = ContainsKey(KeyOf(batch.At(first))) ? 0 : 1;
        if (view.InsertInto(pages_.Modify(leaf), place, batch.At(first))) {
            if (behindAll) UpdateParent(path, path.size() - 1, {}, batch.At(first), false);
            return {1, newKeys};
        }
    }
    IndexPageContent content = IndexPageContent::From(view, memory_);
    const std::size_t newKeys = Merge(view, content.entries, batch, first, count);
    const EntryBytes last = content.entries.back();
    const bool newLast = last.data() == batch.At(first + count - 1).data();
    // Rows that come in the order of the index shall fill its pages.
    const bool ascending = batch.CameInOrder() && behindAll && view.Next() == 0;
    Rewrite(path, path.size() - 1, std::move(content), newLast ? std::optional(last) : std::nullopt,
            ascending);
    return {count, newKeys};
}

/// Puts entries of a batch among those of a leaf, all in order. Returns how many keys are new.
std::size_t IndexTree::Merge(const IndexPageView& leaf, std::vector<EntryBytes>& entries,
                             const EntryBatch& batch, std::size_t first, std::size_t count) const {
    std::vector<EntryBytes> merged;
    merged.reserve(entries.size() + count);
    std::size_t newKeys = 0;
    auto old = entries.begin();
    for (std::size_t i = first; i < first + count; ++i) {
        const EntryBytes entry = batch.At(i);
        const auto place = std::lower_bound(
            old, entries.end(), entry,
            [](EntryBytes left, EntryBytes right) { return CompareBytes(left, right) < 0; });
        if (place != entries.end() && std::ranges::equal(*place, entry))
            ThrowDamaged("holds a new row already");
        merged.insert(merged.end(), old, place);
        old = place;
        if (IsNewKey(leaf, merged, entry, {old, entries.end()})) ++newKeys;
        merged.push_back(entry);
    }
    merged.insert(merged.end(), old, entries.end());
    entries = std::move(merged);
    return newKeys;
}

/// Whether no other entry has the key of this one, which comes between those of the leaf.
bool IndexTree::IsNewKey(const IndexPageView& leaf, std::span<const EntryBytes> before,
                         EntryBytes entry, std::span<const EntryBytes> behind) const {
    const auto hasKey = [key = KeyOf(entry)](EntryBytes other) {
        return std::ranges::equal(KeyOf(other), key);
    };
    if (!before.empty() && hasKey(before.back())) return false;
    if (!behind.empty() && hasKey(behind.front())) return false;
    const bool mayBeElsewhere =
        (before.empty() && leaf.Previous() != 0) || (behind.empty() && leaf.Next() != 0);
    return !mayBeElsewhere || !ContainsKey(KeyOf(entry));
}

}  // namespace jet::storage
