#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "changes/change.h"

namespace quillon {

/// Rows of a table that came or went.
struct CountOfRows {
    RowChange::Kind kind = RowChange::Kind::Added;
    std::string table;
    std::size_t count = 0;
};

/// Rows of a table that are as they were, but for the date that each run gives them.
struct RowsAsBefore {
    std::string table;
    std::size_t count = 0;
};

/// What is different after a run: what it did and took back again is left out.
struct NetChanges {
    /// At most one a row, in the order of the first change. Of new rows only the fields that name
    /// them.
    std::vector<RowChange> rows;
    /// The rows that came or went behind the first hundreds of their table.
    std::vector<CountOfRows> furtherRows;
    std::vector<RowsAsBefore> asBefore;
    std::vector<FileChange> files;  ///< that came off, in their order

    bool IsEmpty() const { return rows.empty() && furtherRows.empty() && files.empty(); }
};

class RowCollector;

/// Puts records together as they come, in little memory: there may be some hundred thousand. Of
/// written files behind the first hundreds no content is held.
class NetChangesCollector {
  public:
    NetChangesCollector();
    NetChangesCollector(const NetChangesCollector&) = delete;
    NetChangesCollector& operator=(const NetChangesCollector&) = delete;
    ~NetChangesCollector();

    void Add(const ChangeRecord& record);
    NetChanges Take();

  private:
    void AddFile(const FileChange& change);

    std::unique_ptr<RowCollector> rows_;
    std::vector<FileChange> files_;
    std::unordered_set<std::uint64_t> failed_;
    std::size_t contents_ = 0;
};

NetChanges NetChangesOf(std::span<const ChangeRecord> records);

/// The field that says when a run has written a row of the table; "" where there is none. With
/// another date it is still the same row.
std::string_view DateOfRowIn(std::string_view table);

/// Whether it concerns the library. The dated copies that a run makes first and what it notes for
/// itself do not.
bool IsOfLibrary(const FileChange& change);

/// Whether the table is the list of differences between tags and database.
bool IsOfDifferences(std::string_view table);

/// Counts changes of the library. The list of differences, of which a run may write all rows anew
/// for one that is new, counts once where it is another one; dates that its rows get do not count.
class ChangeCount {
  public:
    void Add(const ChangeRecord& record);
    std::uint64_t Value() const { return others_ + (hasDifferences_ ? 1 : 0); }

  private:
    std::uint64_t others_ = 0;
    bool hasDifferences_ = false;
};

/// Whether anything of the library is different.
bool ChangesLibrary(const NetChanges& changes);

}  // namespace quillon
