#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "changes/change.h"

namespace quillon {

/// A row at one moment, as far as it is known.
struct RowState {
    bool exists = false;
    std::vector<std::pair<std::string, Value>> key;  ///< as `RowChange::key`
    std::map<std::string, Value> fields;             ///< those that have changed at some time
    bool operator==(const RowState&) const = default;
};

/// What several runs together have made of one row.
struct NetRow {
    std::string table;
    RowState before;  ///< the runs
    /// Since then; `saved` as far as the database was saved: a run that was killed may have got as
    /// far as either.
    RowState now, saved;
};

/// Puts the changes of rows together, from the oldest run to the newest: changes that take each
/// other back leave nothing. Follows rows whose keys change.
class NetRows {
  public:
    /// One run's records, in their order.
    void Add(const std::vector<ChangeRecord>& records);

    /// The rows that are, or may be, another than before, in the order of their first change.
    std::vector<NetRow> Take();

  private:
    struct Entry {
        NetRow row;
        std::size_t run = 0;  ///< which one has changed it last
        bool waits = false;   ///< to be saved
    };

    void Note(const RowChange& change);
    Entry& EntryFor(const RowChange& change);
    void Apply(Entry& entry, const RowChange& change);
    void Save();

    std::vector<Entry> entries_;
    std::unordered_map<std::string, std::vector<std::size_t>> byKey_;  ///< present keys
    std::vector<std::size_t> waiting_;
    std::size_t run_ = 0;
};

/// A table and values of its fields as one text, which differs where any of them does.
std::string KeyText(std::string_view table,
                    const std::vector<std::pair<std::string, Value>>& fields);

}  // namespace quillon
