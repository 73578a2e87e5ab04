#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace quillon {

class Run;

/// Reads the setting's list into the run.
void ReadExcludeList(Run& run);

/// The artist folders that the exclude list leaves out of every walk over the library.
class ExcludedArtists {
  public:
    explicit ExcludedArtists(const Run& run);
    explicit ExcludedArtists(const std::vector<std::string>& names);

    /// Whole names, letter case does not count. Blanks do: those of the list are part of its names.
    bool Contains(std::string_view artist) const;

  private:
    std::unordered_set<std::string> names_;  ///< in lower case
};

}  // namespace quillon
