#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "app/journal/net_changes.h"
#include "changes/change.h"

namespace quillon {

/// Puts changes of rows together as they come, one for each row; changes that take each other back
/// leave nothing, where a row is the same with another date. There may be some hundred thousand
/// rows: of those that come or go no more than the first hundreds of a table are held, of the
/// others a few numbers each.
class RowCollector {
  public:
    void Add(const RowChange& change);
    void Add(const DateReplaced& date);

    /// What is left. Nothing is in here any more then.
    void TakeInto(NetChanges& changes);

  private:
    using KindInTable = std::pair<std::size_t, RowChange::Kind>;

    /// What has become of a row so far.
    struct Entry {
        enum class State : std::uint8_t { Nothing, Held, Added, Removed };
        State state = State::Nothing;
        std::uint32_t table = 0;         ///< its place in `tables_`
        std::unique_ptr<RowChange> row;  ///< where it is held
        std::uint64_t content = 0;       ///< of a removed row that is not held: a hash
    };

    /// How many rows of a table are as they were.
    struct AsBefore {
        bool isKnown = false;  ///< of how many of them the date was replaced
        std::size_t rows = 0;
    };

    std::uint64_t HashOfKey(const RowChange& change, bool after);
    std::uint32_t PlaceOf(const std::string& table);
    Entry Begin(const RowChange& change);
    void PutTogether(Entry& entry, const RowChange& change);
    void ComesBack(const std::string& table);

    std::vector<Entry> entries_;
    std::unordered_map<std::uint64_t, std::size_t> places_;  ///< by the hash of the present key
    std::vector<std::string> tables_;
    std::map<KindInTable, std::size_t> held_;
    std::map<std::string, AsBefore> asBefore_;  ///< by table
    std::string text_;                          ///< to hash
};

}  // namespace quillon
