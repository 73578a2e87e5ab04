#include "tests/jet/storage/index/tree_faults.h"

#include <cstring>
#include <optional>

namespace jet::test {

namespace {

using storage::Page;
using storage::PageNumber;
using Text = std::basic_string<unsigned char>;

struct RawPage {
    bool leaf = true;
    PageNumber previous = 0, next = 0, tail = 0;
    std::vector<Text> entries;
};

class TreeReader {
  public:
    TreeReader(storage::PageStore& pages, PageNumber root, PageNumber definition)
        : pages_(pages), root_(root), definition_(definition) {}

    TreeShape Read() {
        const RawPage top = ReadPage(root_);
        if (top.previous != 0 || top.next != 0) Fault(root_, "the root has neighbours");
        Walk(root_, 1);
        CheckLeafChain();
        CheckOrder();
        return std::move(shape_);
    }

  private:
    void Fault(PageNumber page, const std::string& what) {
        shape_.faults.push_back("page " + std::to_string(page) + ": " + what);
    }

    RawPage ReadPage(PageNumber number) {
        const auto held = pages_.Read(number);
        const Page& page = *held;
        RawPage raw;
        raw.leaf = page[0] == 4;
        if ((page[0] != 3 && page[0] != 4) || page[1] != 1) Fault(number, "wrong type");
        if (storage::Load<PageNumber>(page, 4) != definition_) Fault(number, "wrong table");
        raw.previous = storage::Load<PageNumber>(page, 12);
        raw.next = storage::Load<PageNumber>(page, 16);
        raw.tail = storage::Load<PageNumber>(page, 20);
        const auto prefix = storage::Load<std::uint16_t>(page, 24);
        std::size_t start = 480;
        for (std::size_t bit = 0; bit < 453 * 8; ++bit) {
            if ((page[27 + bit / 8] >> (bit % 8) & 1) == 0) continue;
            const unsigned char* bytes = page.data() + start;
            Text entry;
            if (start != 480) entry.assign(raw.entries.front(), 0, prefix);
            if (480 + bit > 4096) {
                Fault(number, "an entry leaves the page");
                break;
            }
            entry.append(bytes, 480 + bit - start);
            raw.entries.push_back(entry);
            start = 480 + bit;
        }
        if (storage::Load<std::uint16_t>(page, 2) != 4096 - start)
            Fault(number, "wrong free-space word");
        if (prefix != 0) ++shape_.compressedPages;
        return raw;
    }

    // NOLINTNEXTLINE(misc-no-recursion)
    Text Walk(PageNumber number, std::size_t level) {
        shape_.levels = std::max(shape_.levels, level);
        if (number != root_) shape_.pages.push_back(number);
        const RawPage page = ReadPage(number);
        if (page.leaf) {
            leaves_.push_back(number);
            if (leafLevel_.value_or(level) != level) Fault(number, "leaves on several levels");
            leafLevel_ = level;
            if (page.entries.empty() && number != root_) Fault(number, "an empty page in the tree");
            entries_.insert(entries_.end(), page.entries.begin(), page.entries.end());
            shape_.entries += page.entries.size();
            return page.entries.empty() ? Text() : page.entries.back();
        }
        std::vector<PageNumber> children;
        Text greatest;
        for (const Text& entry : page.entries) {
            PageNumber child = 0;
            for (const unsigned char byte : entry.substr(entry.size() - 4))
                child = child << 8 | byte;
            children.push_back(child);
            greatest = Walk(child, level + 1);
            if (greatest != entry.substr(0, entry.size() - 4))
                Fault(number, "an entry is not the greatest of its child");
        }
        const std::size_t fewest = 1, most = page.tail == 0 ? 1 : page.entries.size();
        if (page.entries.size() < fewest || page.entries.size() > most)
            Fault(number, "a node has a tail if and only if it has several children");
        if (page.tail != 0) {
            children.push_back(page.tail);
            greatest = Walk(page.tail, level + 1);
        }
        CheckSiblings(children);
        return greatest;
    }

    void CheckSiblings(const std::vector<PageNumber>& children) {
        for (std::size_t i = 0; i < children.size(); ++i) {
            const RawPage child = ReadPage(children[i]);
            if (child.leaf) continue;
            const PageNumber before = i == 0 ? 0 : children[i - 1];
            const PageNumber after = i + 1 == children.size() ? 0 : children[i + 1];
            if (child.previous != before || child.next != after)
                Fault(children[i], "a node is not linked with its neighbours");
        }
    }

    void CheckLeafChain() {
        for (std::size_t i = 0; i < leaves_.size(); ++i) {
            const RawPage leaf = ReadPage(leaves_[i]);
            const PageNumber before = i == 0 ? 0 : leaves_[i - 1];
            const PageNumber after = i + 1 == leaves_.size() ? 0 : leaves_[i + 1];
            if (leaf.previous != before || leaf.next != after)
                Fault(leaves_[i], "a leaf is not linked with its neighbours");
            if (leaf.tail != 0) Fault(leaves_[i], "a leaf has a tail");
        }
    }

    void CheckOrder() {
        for (std::size_t i = 1; i < entries_.size(); ++i)
            if (entries_[i - 1] >= entries_[i]) Fault(root_, "entries out of order");
    }

    storage::PageStore& pages_;
    PageNumber root_, definition_;
    TreeShape shape_;
    std::vector<PageNumber> leaves_;
    std::vector<Text> entries_;
    std::optional<std::size_t> leafLevel_;
};

}  // namespace

TreeShape ReadTree(storage::PageStore& pages, PageNumber root, PageNumber definition) {
    return TreeReader(pages, root, definition).Read();
}

}  // namespace jet::test
