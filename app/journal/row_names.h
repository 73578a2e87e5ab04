#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <span>
#include <string>
#include <utility>

#include "changes/change.h"
#include "platform/database.h"

namespace quillon {

/// What people call rows of which a change tells no more than the number: an album by artist and
/// title, a song by its file. Looked up in the database once, only the tables that need it.
class RowNames {
  public:
    using Row = std::pair<std::string, std::int64_t>;  ///< table and number
    using Rows = std::set<Row>;

    RowNames() = default;
    /// Of these changes. A database that cannot be read has no names.
    RowNames(const std::filesystem::path& database, std::span<const RowChange> changes);
    /// Of these rows of a database that is open. Throws Failure.
    RowNames(Connection& connection, const Rows& rows);

    /// "" where it is not known.
    std::string Of(const RowChange& change) const;

    /// Adds the row where its change tells no more than the number.
    static void AddUnnamed(const RowChange& change, Rows& rows);

  private:
    std::map<Row, std::string> names_;
};

}  // namespace quillon
