#pragma once

#include <filesystem>
#include <map>
#include <span>
#include <string>
#include <utility>

#include "changes/change.h"

namespace quillon {

/// What people call rows of which a change tells no more than the number: an album by artist and
/// title, a song by its file. Looked up in the database once, only the tables that need it.
class RowNames {
  public:
    /// Of these changes. A database that cannot be read has no names.
    RowNames(const std::filesystem::path& database, std::span<const RowChange> changes);

    /// "" where it is not known.
    std::string Of(const RowChange& change) const;

  private:
    std::map<std::pair<std::string, std::int64_t>, std::string> names_;  ///< by table and number
};

}  // namespace quillon
