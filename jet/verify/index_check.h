#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "jet/value.h"
#include "jet/verify/index_entries.h"
#include "jet/verify/pages.h"
#include "jet/verify/shape.h"
#include "jet/verify/table_data.h"
#include "jet/verify/usage_map.h"

namespace jet::verify {

/// Checks one index of a table: its pages, their order, and that its entries are those that the
/// rows make. Only where they are not, each is looked at beside its row to say which is wrong.
class IndexCheck {
  public:
    IndexCheck(const Shape& shape, std::size_t index, TableData& data, Pages& pages,
               UsageMaps& maps, Findings& findings);

    void Run();

  private:
    struct Neighbours {
        storage::PageNumber page = 0, previous = 0, next = 0;
        bool leaf = false;
    };

    Bytes Walk(storage::PageNumber page, std::size_t depth);
    void CheckLinks(const std::vector<Neighbours>& level);
    void MeetEntry();
    bool HasUniqueKeyAgain() const;
    void Explain();
    void CheckEntry(std::span<const std::uint8_t> keyAndRow);
    void CheckKey(storage::RowId id, std::span<const std::uint8_t> key);
    void CheckMissing();

    const Shape& shape_;
    const Index& index_;
    const WantedEntries& wanted_;
    TableData& data_;
    Pages& pages_;
    UsageMaps& maps_;
    Findings& findings_;
    std::string where_;
    std::vector<storage::PageNumber> reached_;
    std::vector<Neighbours> leaves_;
    Neighbours last_;  ///< the page that Walk came back from
    IndexEntries met_;
    bool mustBeExplained_ = false;
    Bytes allNullKey_;
    Bytes entry_, lastEntry_;
    std::vector<bool> seen_;  ///< for each row of the table
};

}  // namespace jet::verify
