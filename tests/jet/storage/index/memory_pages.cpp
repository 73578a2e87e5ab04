#include "tests/jet/storage/index/memory_pages.h"

#include <fstream>
#include <stdexcept>

#include "jet/error.h"

namespace jet::test {

using storage::Page;
using storage::PageNumber;

MemoryPages::MemoryPages() : pages_{std::make_shared<Page>()} {}

MemoryPages::MemoryPages(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    Page page;
    while (stream.read(reinterpret_cast<char*>(page.data()), storage::PageSize))
        pages_.push_back(std::make_shared<Page>(page));
}

std::shared_ptr<const Page> MemoryPages::Read(PageNumber page) {
    if (page >= pages_.size()) throw Error(ErrorKind::Damaged, "There is no such page.");
    return pages_[page];
}

Page& MemoryPages::Modify(PageNumber page) {
    if (page >= pages_.size()) throw Error(ErrorKind::Damaged, "There is no such page.");
    ++modifications_;
    return *pages_[page];
}

PageNumber MemoryPages::Allocate() {
    PageNumber page = PageCount();
    if (free_.empty()) {
        pages_.push_back(std::make_shared<Page>());
    } else {
        page = *free_.begin();
        free_.erase(free_.begin());
        *pages_[page] = Page{};
    }
    inUse_.insert(page);
    return page;
}

void MemoryPages::Free(PageNumber page) {
    if (inUse_.erase(page) == 0) throw std::logic_error("a page is freed that is not in use");
    free_.insert(page);
    pages_[page]->fill(0xA5);
}

PageNumber MemoryPages::PageCount() const {
    return static_cast<PageNumber>(pages_.size());
}

void ListedPages::PageTaken(PageNumber page) {
    if (!pages_.insert(page).second) throw std::logic_error("a page is taken twice");
}

void ListedPages::PageReleased(PageNumber page) {
    if (pages_.erase(page) == 0) throw std::logic_error("a page is released that was never taken");
}

}  // namespace jet::test
