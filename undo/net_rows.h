#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "changes/change.h"
#include "undo/field_map.h"

namespace quillon {

/// A row at one moment, as far as it is known.
struct RowState {
    bool exists = false;
    std::vector<std::pair<std::string, Value>> key;  ///< as `RowChange::key`
    FieldMap fields;                                 ///< those that have changed at some time
    bool operator==(const RowState&) const = default;
};

/// What several runs together have made of one row.
struct NetRow {
    std::string table;
    RowState before;  ///< the runs
    RowState now;     ///< since then
    /// As far as the database was saved, where that is less and not as before: a run that was
    /// killed may have got as far as either.
    std::optional<RowState> saved;
};

/// Puts the changes of rows together, from the oldest run to the newest: changes that take each
/// other back leave nothing. Follows rows whose keys change.
class NetRows {
  public:
    /// To be called before the first record of each run.
    void StartRun();
    /// One of its records, in their order.
    void Add(const ChangeRecord& record);

    /// The rows that are, or may be, another than before, in the order of their first change. Their
    /// states before have the dates from before `Dates()`.
    std::vector<NetRow> Take();

    /// Dates that were replaced, without those that were put back, in their order.
    const std::vector<DateReplaced>& Dates() const { return dates_; }

  private:
    struct Entry {
        NetRow row;
        std::size_t run = 0;  ///< which one has changed it last
        bool waits = false;   ///< to be saved
        /// In the database the row is as before: `row.saved` would be the same, of all rows of a
        /// run that saves them at once.
        bool isSavedAsBefore = false;

        const RowState* Saved() const {
            if (isSavedAsBefore) return &row.before;
            return row.saved ? &*row.saved : nullptr;
        }
    };

    void Note(const RowChange& change);
    void Note(const DateReplaced& date);
    void KeepSaved(Entry& entry);
    bool FollowDate(Entry& entry, const DateReplaced& date) const;
    Value AsBefore(const std::string& table, const std::string& field, Value value) const;
    bool IsAsBefore(const NetRow& row, const RowState& state) const;
    void Wait(std::size_t number);
    std::size_t EntryFor(const RowChange& change);
    void Apply(Entry& entry, const RowChange& change);
    void Save();

    std::deque<Entry> entries_;
    std::unordered_map<std::string, std::vector<std::size_t>> byKey_;  ///< present keys
    std::vector<std::size_t> waiting_;
    std::vector<DateReplaced> dates_;
    std::size_t run_ = 0;
};

/// Appends a field's name and value, so that texts differ where any value does.
void AppendKeyField(std::string& text, std::string_view name, const Value& value);

/// A table and values of its fields as one text, which differs where any of them does.
std::string KeyText(std::string_view table,
                    const std::vector<std::pair<std::string, Value>>& fields);

}  // namespace quillon
