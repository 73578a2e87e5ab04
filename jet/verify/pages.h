#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "jet/storage/format/page_store.h"
#include "jet/verify/findings.h"

namespace jet::verify {

/// What a page is used for; two uses of one page contradict each other.
enum class PageUse : std::uint8_t {
    None,
    Header,
    GlobalMap,
    MapRows,  ///< may hold the map rows of several tables
    MapBitmap,
    Definition,
    Rows,
    LongValues,
    Index,
};

/// The pages of the file under check, and what each was found to be used for.
class Pages {
  public:
    Pages(storage::PageStore& store, Findings& findings);

    storage::PageNumber Count() const { return static_cast<storage::PageNumber>(uses_.size()); }
    bool Exists(storage::PageNumber page) const { return page != 0 && page < Count(); }

    /// The page, which must exist.
    std::shared_ptr<const storage::Page> Read(storage::PageNumber page);

    /// Notes a use of a page; a fault and false if there is no such page or it is used already
    /// (but pages with map rows serve several tables).
    bool Claim(storage::PageNumber page, PageUse use, const std::string& where);

    PageUse UseOf(storage::PageNumber page) const { return uses_[page].kind; }
    /// The table that uses a page; "" for none.
    const std::string& TableOf(storage::PageNumber page) const {
        return tables_[uses_[page].table];
    }

  private:
    struct Use {
        PageUse kind = PageUse::None;
        std::uint32_t table = 0;  ///< position in tables_
    };

    storage::PageStore& store_;
    Findings& findings_;
    std::vector<Use> uses_;
    std::vector<std::string> tables_{""};  ///< the last one is the one that was claimed for last
};

}  // namespace jet::verify
