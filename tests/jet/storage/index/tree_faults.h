#pragma once

#include <string>
#include <vector>

#include "jet/storage/format/page_store.h"

namespace jet::test {

/// What a tree looks like, read byte by byte without the code under test.
struct TreeShape {
    std::vector<std::string> faults;  ///< broken rules; empty for a sound tree
    std::size_t entries = 0;          ///< on leaves
    std::size_t levels = 0;
    std::size_t compressedPages = 0;
    std::vector<storage::PageNumber> pages;  ///< all but the root
};

/// Checks order, masks, free-space words, prefixes, links, tails and the entries of nodes.
TreeShape ReadTree(storage::PageStore& pages, storage::PageNumber root,
                   storage::PageNumber definition);

}  // namespace jet::test
