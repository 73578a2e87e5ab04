#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

class Run;
class TrackIndex;

/// What becomes of a playlist that was captured.
struct RepairedList {
    std::vector<std::string> lines;     ///< bytes, the header first
    std::vector<std::string> messages;  ///< what is to be logged of it
    bool isChanged = false;             ///< whether the lines differ from the file's

    /// Nothing but a header is left.
    bool IsEmpty() const { return lines.size() < 2; }
};

/// Drops entries that resolve no longer or twice, and lets the others follow their songs to their
/// present positions, by the run's working set. Failure: SubscriptOutOfRange for a list of too many
/// lines.
RepairedList Repair(Run& run, const TrackIndex& tracks, const std::string& name,
                    std::string_view text);

}  // namespace quillon
