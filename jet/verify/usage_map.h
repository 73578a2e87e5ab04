#pragma once

#include <set>
#include <string>
#include <vector>

#include "jet/storage/format/page.h"
#include "jet/verify/pages.h"

namespace jet::verify {

/// Reads usage maps: sets of pages. Each must be named once only.
class UsageMaps {
  public:
    UsageMaps(Pages& pages, Findings& findings) : pages_(pages), findings_(findings) {}

    /// The pages in the map, in order; those behind the end of the file are left out if
    /// `mayReachOut` (the global map lists pages yet to come) and a fault otherwise.
    std::vector<storage::PageNumber> Read(storage::RowId map, const std::string& where,
                                          bool mayReachOut = false);

  private:
    void AddBits(std::span<const std::uint8_t> bits, storage::PageNumber first, bool mayReachOut,
                 const std::string& where, std::vector<storage::PageNumber>& found);

    Pages& pages_;
    Findings& findings_;
    std::set<storage::RowId> known_;
};

}  // namespace jet::verify
