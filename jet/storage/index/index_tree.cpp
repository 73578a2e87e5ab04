#include "jet/storage/index/index_tree.h"

#include <algorithm>
#include <string>
#include <utility>

#include "jet/error.h"
#include "jet/storage/index/index_page.h"

namespace jet::storage {

namespace {

/// Deeper than any tree that a 2 GB file can hold; a longer way down goes in circles.
constexpr std::size_t DeepestTree = 32;

constexpr std::size_t PreviousOffset = 12;
constexpr std::size_t NextOffset = 16;

/// Takes the child's number off a node's entry.
PageNumber CutChild(EntryBytes& entry) {
    PageNumber child = 0;
    for (const std::uint8_t byte : entry.last(4))
        child = child << 8 | byte;
    entry = entry.first(entry.size() - 4);
    return child;
}

/// Every node with more than one child has its last one as tail.
void MakeTail(IndexPageContent& node) {
    if (node.leaf || node.tail != 0 || node.entries.size() < 2) return;
    node.tail = CutChild(node.entries.back());
    node.entries.pop_back();
}

/// The first child of a node.
PageNumber FirstChild(const IndexPageContent& node) {
    if (node.entries.empty()) return node.tail;
    EntryBytes first = node.entries.front();
    return CutChild(first);
}

std::vector<IndexPageContent> Divide(IndexPageContent content,
                                     const std::vector<std::size_t>& cuts) {
    std::vector<IndexPageContent> parts;
    std::size_t first = 0;
    for (const std::size_t cut : cuts) {
        IndexPageContent& part = parts.emplace_back();
        part.leaf = content.leaf;
        part.height = content.height;
        part.entries.assign(content.entries.begin() + static_cast<std::ptrdiff_t>(first),
                            content.entries.begin() + static_cast<std::ptrdiff_t>(cut));
        first = cut;
    }
    content.entries.erase(content.entries.begin(),
                          content.entries.begin() + static_cast<std::ptrdiff_t>(first));
    parts.push_back(std::move(content));
    return parts;
}

}  // namespace

IndexTree::IndexTree(PageStore& pages, IndexPageListener& listener, PageNumber root,
                     PageNumber definition)
    : pages_(pages), listener_(listener), root_(root), definition_(definition) {}

void IndexTree::ThrowDamaged(const char* what) const {
    throw Error(ErrorKind::Damaged,
                "The index at page " + std::to_string(root_) + " " + what + ".");
}

void IndexTree::MakeEmpty(Page& root, PageNumber definition) {
    IndexPageContent{}.WriteTo(root, definition);
}

std::shared_ptr<const Page> IndexTree::Read(PageNumber page) const {
    if (page == 0) ThrowDamaged("names a page that cannot be");
    return pages_.Read(page);
}

Page& IndexTree::Modify(PageNumber page) {
    // What is about to be changed must be an index page of this table, whatever led here.
    const IndexPageView check(*Read(page), page, definition_);
    return pages_.Modify(page);
}

PageNumber IndexTree::Take() {
    const PageNumber page = pages_.Allocate();
    listener_.PageTaken(page);
    return page;
}

/// `greatest`: the greatest entry that belongs on the leaf, where a node above names one.
IndexTree::Path IndexTree::Descend(EntryBytes bytes, std::optional<Bytes>* greatest) const {
    Path path;
    PageNumber page = root_;
    while (true) {
        const auto content = Read(page);
        const IndexPageView view(*content, page, definition_);
        std::size_t place = view.LowerBound(bytes);
        if (view.IsLeaf()) {
            path.push_back({page, place});
            return path;
        }
        if (view.ChildCount() == 0) ThrowDamaged("has a node without children");
        if (greatest != nullptr && place < view.Count()) *greatest = view.KeyAndRow(place);
        place = std::min(place, view.ChildCount() - 1);
        path.push_back({page, place});
        if (path.size() == DeepestTree) ThrowDamaged("is too deep");
        page = view.Child(place);
    }
}

EntryBytes IndexTree::GreatestBelow(PageNumber page) {
    for (std::size_t depth = 0; depth < DeepestTree; ++depth) {
        const auto content = Read(page);
        const IndexPageView view(*content, page, definition_);
        if (view.IsLeaf()) {
            if (view.Count() == 0) ThrowDamaged("has an empty page");
            return memory_.Join(view.KeyAndRow(view.Count() - 1));
        }
        if (view.ChildCount() == 0) ThrowDamaged("has a node without children");
        page = view.Child(view.ChildCount() - 1);
    }
    ThrowDamaged("is too deep");
}

std::optional<Bytes> IndexTree::GreatestKey() const {
    // No key begins with such a byte and goes on like this.
    const auto [leaf, place] = Descend(Bytes(LongestKey, 0xFF)).back();
    const auto page = Read(leaf);
    const IndexPageView view(*page, leaf, definition_);
    if (view.Count() == 0) return std::nullopt;
    Bytes entry = view.KeyAndRow(view.Count() - 1);
    entry.resize(entry.size() - EntryRowSize);
    return entry;
}

void IndexTree::Remove(std::span<const std::uint8_t> key, RowId row) {
    memory_.Clear();
    Bytes rowBytes;
    AppendRow(rowBytes, row);
    const EntryBytes entry = memory_.Join(key, rowBytes);
    const Path path = Descend(entry);
    const auto [leaf, place] = path.back();
    const auto page = Read(leaf);
    const IndexPageView view(*page, leaf, definition_);
    if (place == view.Count() || !view.IsEntry(place, entry))
        ThrowDamaged("has no entry for a row that it should hold");
    if (view.Count() == 1) {
        RemovePage(path, path.size() - 1);
        return;
    }
    std::optional<EntryBytes> newGreatest;
    if (place + 1 == view.Count()) newGreatest = memory_.Join(view.KeyAndRow(place - 1));
    view.RemoveFrom(pages_.Modify(leaf), place);
    UpdateParent(path, path.size() - 1, {}, newGreatest, false);
}

template <typename Look>
void IndexTree::AlongLeaves(Step from, Look look) const {
    auto [leaf, place] = from;
    for (PageNumber visited = 0; leaf != 0; ++visited) {
        if (visited > pages_.PageCount()) ThrowDamaged("goes in circles");
        const auto page = Read(leaf);
        const IndexPageView view(*page, leaf, definition_);
        if (!view.IsLeaf()) ThrowDamaged("has a node among its leaves");
        if (!look(view, place)) return;
        leaf = view.Next();
        place = 0;
    }
}

bool IndexTree::ContainsKey(std::span<const std::uint8_t> key) const {
    // Nodes name the greatest entry of each child but the last: behind all entries of its leaf a
    // key is behind all of the tree.
    const auto [leaf, place] = Descend(key).back();
    const auto page = Read(leaf);
    const IndexPageView view(*page, leaf, definition_);
    return place < view.Count() && view.BeginsWith(place, key) &&
           view.KeyAndRow(place).size() == key.size() + EntryRowSize;
}

void IndexTree::RowsWith(std::span<const std::uint8_t> start,
                         const std::function<bool(RowId row)>& visit) const {
    AlongLeaves(Descend(start).back(), [&](const IndexPageView& leaf, std::size_t place) {
        for (; place < leaf.Count(); ++place)
            if (!leaf.BeginsWith(place, start) || !visit(leaf.Row(place))) return false;
        return true;
    });
}

void IndexTree::ForEach(
    const std::function<void(std::span<const std::uint8_t> key, RowId row)>& visit) const {
    AlongLeaves({Descend({}).back().page, 0}, [&](const IndexPageView& leaf, std::size_t place) {
        for (; place < leaf.Count(); ++place) {
            const Bytes entry = leaf.KeyAndRow(place);
            visit(std::span(entry).first(entry.size() - EntryRowSize), leaf.Row(place));
        }
        return true;
    });
}

void IndexTree::Rewrite(const Path& path, std::size_t level, IndexPageContent content,
                        const std::optional<EntryBytes>& newGreatest, bool ascending) {
    MakeTail(content);
    const std::vector<std::size_t> cuts = content.Cuts(ascending);
    if (!cuts.empty()) {
        Split(path, level, std::move(content), cuts, newGreatest, ascending);
        return;
    }
    content.WriteTo(Modify(path[level].page), definition_);
    UpdateParent(path, level, {}, newGreatest, ascending);
}

/// All parts but the last go to new pages in front of the old one, so that the old page's place in
/// its parent, entry or tail, stays what it is. Of a root, the last part moves too: the root then
/// names all parts.
void IndexTree::Split(const Path& path, std::size_t level, IndexPageContent content,
                      const std::vector<std::size_t>& cuts,
                      const std::optional<EntryBytes>& newGreatest, bool ascending) {
    const bool isRoot = level == 0;
    if (isRoot) content.previous = content.next = 0;
    const bool leaf = content.leaf;
    const std::uint8_t height = content.height;
    const PageNumber before = content.previous;
    std::vector<IndexPageContent> parts = Divide(std::move(content), cuts);
    std::vector<NewChild> added;
    for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
        EntryBytes greatest = parts[i].entries.back();
        if (!leaf) {
            SeparateChildren(CutChild(greatest), FirstChild(parts[i + 1]));
            MakeTail(parts[i]);
        }
        added.push_back({greatest, Take()});
    }
    const PageNumber lastPage = isRoot ? Take() : path[level].page;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        parts[i].previous = i == 0 ? before : added[i - 1].page;
        if (i < added.size()) {
            parts[i].next = i + 1 < added.size() ? added[i + 1].page : lastPage;
            parts[i].WriteTo(pages_.Modify(added[i].page), definition_);
        }
    }
    parts.back().WriteTo(pages_.Modify(lastPage), definition_);
    if (before != 0) Store(Modify(before), NextOffset, added.front().page);
    if (!isRoot) {
        UpdateParent(path, level, added, newGreatest, ascending);
        return;
    }
    IndexPageContent root{.leaf = false,
                          .height = static_cast<std::uint8_t>(height + 1),
                          .tail = lastPage,
                          .entries = {}};
    for (const NewChild& child : added)
        root.entries.push_back(memory_.Join(child.greatest, ChildBytes(child.page)));
    Rewrite(path, 0, std::move(root), std::nullopt, ascending);
}

/// Tells the parent of the page at `level` about pages in front of it and about its new greatest
/// entry (none: it is what it was), as far up as somebody has it written down.
void IndexTree::UpdateParent(const Path& path, std::size_t level, std::span<const NewChild> added,
                             const std::optional<EntryBytes>& newGreatest, bool ascending) {
    if (level == 0 || (added.empty() && !newGreatest)) return;
    const auto [parent, place] = path[level - 1];
    const auto page = Read(parent);
    const IndexPageView view(*page, parent, definition_);
    const bool isTail = place == view.Count();
    const bool isLast = place + 1 == view.ChildCount();
    if (isTail && added.empty()) {
        UpdateParent(path, level - 1, {}, newGreatest, ascending);
        return;
    }
    IndexPageContent content = IndexPageContent::From(view, memory_);
    if (newGreatest && !isTail)
        content.entries[place] = memory_.Join(*newGreatest, ChildBytes(path[level].page));
    std::vector<EntryBytes> entries;
    for (const NewChild& child : added)
        entries.push_back(memory_.Join(child.greatest, ChildBytes(child.page)));
    content.entries.insert(content.entries.begin() + static_cast<std::ptrdiff_t>(place),
                           entries.begin(), entries.end());
    Rewrite(path, level - 1, std::move(content), isLast ? newGreatest : std::nullopt, ascending);
}

/// Takes a page without entries out of the tree, and every node that is left without children.
void IndexTree::RemovePage(const Path& path, std::size_t level) {
    if (level == 0) {
        MakeEmpty(Modify(root_), definition_);
        return;
    }
    const auto [parent, place] = path[level - 1];
    const auto page = Read(parent);
    const IndexPageView view(*page, parent, definition_);
    if (view.ChildCount() == 1) {
        Release(path[level].page);
        RemovePage(path, level - 1);
        return;
    }
    IndexPageContent content = IndexPageContent::From(view, memory_);
    const bool wasLast = place + 1 == view.ChildCount();
    if (place == content.entries.size()) {
        content.tail = 0;
    } else {
        content.entries.erase(content.entries.begin() + static_cast<std::ptrdiff_t>(place));
    }
    if (content.entries.empty()) {
        // An only child has an entry.
        content.entries.push_back(
            memory_.Join(GreatestBelow(content.tail), ChildBytes(content.tail)));
        content.tail = 0;
    }
    std::optional<EntryBytes> newGreatest;
    if (wasLast) {
        newGreatest = content.entries.back();
        CutChild(*newGreatest);
    }
    Release(path[level].page);
    Rewrite(path, level - 1, std::move(content), newGreatest, false);
}

void IndexTree::Release(PageNumber page) {
    const auto content = Read(page);
    const IndexPageView view(*content, page, definition_);
    const PageNumber previous = view.Previous(), next = view.Next();
    if (previous != 0) Store(Modify(previous), NextOffset, next);
    if (next != 0) Store(Modify(next), PreviousOffset, previous);
    pages_.Free(page);
    listener_.PageReleased(page);
}

/// Nodes are linked only with those under the same parent; two children that come under different
/// ones are linked no longer.
void IndexTree::SeparateChildren(PageNumber left, PageNumber right) {
    const auto content = Read(left);
    if (IndexPageView(*content, left, definition_).IsLeaf()) return;
    Store(Modify(left), NextOffset, PageNumber{0});
    Store(Modify(right), PreviousOffset, PageNumber{0});
}

}  // namespace jet::storage
