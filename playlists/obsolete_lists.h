#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>

#include "playlists/generated_lists.h"

namespace quillon {

class Run;
class Steps;

/// What a run has done for the generated playlists.
class MadeLists {
  public:
    /// All lists of these are to be made, in this run.
    void Plan(const GeneratedLists& lists);
    /// One of them could not be made. Its former parts have no successors then.
    void Failed(const GeneratedList& list);
    /// A family has come to its end.
    void Complete(GeneratedBy family);
    /// There was no music at all to make a family's lists of.
    void FoundNoMusic(GeneratedBy family);

    bool IsComplete(GeneratedBy family) const { return complete_.at(Index(family)); }
    bool HasFoundMusic(GeneratedBy family) const { return !withoutMusic_.at(Index(family)); }
    /// Whether a file of this name (with extension) is a list of this run, or may be a part of one
    /// that failed.
    bool Hold(std::string_view name) const;

  private:
    static std::size_t Index(GeneratedBy family) { return static_cast<std::size_t>(family); }

    std::unordered_set<std::string> names_;            ///< with extension, in lower case
    std::unordered_set<std::string> failedStems_;      ///< in lower case
    std::array<bool, 2> complete_{}, withoutMusic_{};  ///< by family
};

/// Deletes the generated lists of earlier runs that this one had no use for, each with a line in
/// the log. None goes whose family has not come to its end, none when the run removes nothing, and
/// when no music was found at all the run's brake decides. A failure is logged and costs the list
/// that it is about. Throws Failure when the rows cannot be read.
void DeleteObsoleteLists(Run& run, Steps& steps, const MadeLists& made);

}  // namespace quillon
