#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "jet/value.h"
#include "jet/verify/index_entries.h"
#include "jet/verify/pages.h"
#include "jet/verify/row_view.h"
#include "jet/verify/shape.h"
#include "jet/verify/slots.h"
#include "jet/verify/usage_map.h"

namespace jet::verify {

/// A row's bytes with the page that holds them.
struct RowBytes {
    std::shared_ptr<const storage::Page> holder;
    std::span<const std::uint8_t> bytes;
};

/// Whether all of an index's columns are Null in a row, or any.
bool AllNull(const Shape& shape, const Index& index, const RowView& row);
bool AnyNull(const Shape& shape, const Index& index, const RowView& row);

/// What the rows of a table make of one of its indexes.
struct WantedEntries {
    IndexEntries entries;
    bool hasNull = false;  ///< a row has Null in one of the columns of an index that refuses it
};

/// Checks the data pages of one table, its rows and its long values, and reads rows for whoever
/// checks the indexes.
class TableData {
  public:
    TableData(const Shape& shape, Pages& pages, UsageMaps& maps, Findings& findings);

    /// Everything but the indexes. `countIsExact`: the definition's number of rows must be right
    /// (in system tables Access lets it drift).
    void Check(bool countIsExact);

    /// The rows found by Check, in the file's order.
    const std::vector<storage::RowId>& Rows() const { return rows_; }

    /// What Check found that an index of the table has to hold.
    const WantedEntries& Wanted(std::size_t index) const { return wanted_[index]; }

    /// The bytes of one of Rows(), which may lie elsewhere.
    RowBytes Find(storage::RowId row);

    /// A column's value; none where its bytes make no sense.
    std::optional<Value> ReadValue(const RowView& row, const Column& column);

    /// Appends a column's part of an index key, which the row is to have. False where the value
    /// makes no sense.
    bool AppendKey(Bytes& key, const RowView& row, const IndexPart& part);

    const std::string& Where() const { return where_; }

  private:
    /// What the key of a text was made from, and where it came out.
    struct LastKey {
        Bytes field, key;
    };

    void ClaimPages();
    void ClaimLongPages();
    void CheckPage(storage::PageNumber page);
    void CheckMovedRows();
    void CheckRow(storage::RowId id, std::span<const std::uint8_t> bytes);
    void CheckAutoNumber(const Column& column, std::span<const std::uint8_t> bytes);
    void CheckField(storage::RowId id, const Column& column, std::span<const std::uint8_t> bytes);
    /// What is wrong with a column's bytes; empty where nothing is.
    std::string FaultOfField(const Column& column, std::span<const std::uint8_t> bytes);
    void AddWanted(storage::RowId id, const RowView& row);
    void AppendWantedKey(const RowView& row, const IndexPart& part, LastKey& last);
    std::optional<Bytes> ReadLongValue(const Column& column, std::span<const std::uint8_t> field,
                                       std::string& fault);
    std::optional<RowBytes> LongRow(storage::RowId id, std::string& fault);

    const Shape& shape_;
    Pages& pages_;
    UsageMaps& maps_;
    Findings& findings_;
    std::string where_;
    std::vector<const Column*> all_;      ///< but Booleans
    std::vector<const Column*> varying_;  ///< of these, whose values must be looked at
    std::size_t fixedEnd_ = 0;            ///< where the values of the others end
    std::vector<WantedEntries> wanted_;   ///< by index
    std::vector<LastKey> lastKeys_;       ///< of each part of each index
    Bytes entry_;                         ///< in the making
    std::vector<storage::PageNumber> owned_;
    std::vector<storage::RowId> rows_;
    std::map<storage::RowId, storage::RowId> homes_;  ///< of moved content: the place that names it
    std::set<storage::RowId> movedContents_;
    std::set<storage::RowId> longRows_;  ///< pieces of long values met so far
    bool collecting_ = false;            ///< note the pieces of long values that are read
    std::int64_t greatestAutoNumber_ = 0;
};

}  // namespace jet::verify
