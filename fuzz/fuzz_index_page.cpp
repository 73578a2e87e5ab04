// Pages of an index with arbitrary content: every operation on such a tree comes to an end, with a
// result or an error, and touches nothing outside of its pages.
//
// The input is a list of pages: the number of bytes (two), then so many bytes; the rest of a page
// is zero. The first one is the root.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "fuzz/attempt.h"
#include "jet/error.h"
#include "jet/storage/format/page_store.h"
#include "jet/storage/index/index_tree.h"

namespace {

namespace storage = jet::storage;
using storage::Page;
using storage::PageNumber;

constexpr PageNumber Root = 1, Definition = 7;
constexpr std::size_t MostPages = 16;

class ArbitraryPages : public storage::PageStore {
  public:
    explicit ArbitraryPages(std::span<const std::uint8_t> input) {
        pages_.push_back(std::make_shared<Page>());
        while (input.size() > 2 && pages_.size() < MostPages) {
            const std::size_t wanted = storage::Load<std::uint16_t>(input, 0);
            input = input.subspan(2);
            const std::size_t size = std::min({wanted, input.size(), storage::PageSize});
            pages_.push_back(std::make_shared<Page>());
            std::ranges::copy(input.first(size), pages_.back()->begin());
            input = input.subspan(size);
        }
    }

    std::shared_ptr<const Page> Read(PageNumber page) override { return Find(page); }
    Page& Modify(PageNumber page) override { return *Find(page); }
    PageNumber Allocate() override {
        pages_.push_back(std::make_shared<Page>());
        return PageCount() - 1;
    }
    void Free(PageNumber page) override { Find(page)->fill(0); }
    PageNumber PageCount() const override { return static_cast<PageNumber>(pages_.size()); }

  private:
    std::shared_ptr<Page> Find(PageNumber page) {
        if (page >= pages_.size())
            throw jet::Error(jet::ErrorKind::Damaged, "There is no such page.");
        return pages_[page];
    }

    std::vector<std::shared_ptr<Page>> pages_;
};

class NoListener : public storage::IndexPageListener {
  public:
    void PageTaken(PageNumber /*page*/) override {}
    void PageReleased(PageNumber /*page*/) override {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span<const std::uint8_t> input(data, size);
    ArbitraryPages pages(input);
    NoListener listener;
    storage::IndexTree tree(pages, listener, Root, Definition);

    std::vector<std::pair<jet::Bytes, storage::RowId>> entries;
    fuzz::Attempt([&] {
        tree.ForEach([&entries](std::span<const std::uint8_t> key, storage::RowId row) {
            entries.emplace_back(jet::Bytes(key.begin(), key.end()), row);
        });
    });
    const auto ending = input.last(std::min<std::size_t>(size, 40));
    for (std::size_t length = 1; length <= ending.size(); length += 7) {
        const auto key = ending.last(length);
        fuzz::Attempt([&] { tree.ContainsKey(key); });
        fuzz::Attempt([&] { tree.Insert(key, {.page = 300, .slot = 1}); });
    }
    constexpr std::size_t MostRemoved = 300;
    const auto removed = std::span(entries).first(std::min(entries.size(), MostRemoved));
    for (const auto& entry : removed) {
        const jet::Bytes& key = entry.first;
        const storage::RowId row = entry.second;
        const storage::RowId other{.page = row.page ^ 1U, .slot = row.slot};
        fuzz::Attempt([&] { tree.ContainsKey(key); });
        fuzz::Attempt([&] { tree.Insert(key, other); });
        fuzz::Attempt([&] { tree.Remove(key, row); });
    }
    return 0;
}
