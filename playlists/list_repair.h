#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "database/waiting_music.h"

namespace quillon {

class Run;
class TrackIndex;

/// What becomes of a playlist that was captured.
struct RepairedList {
    std::vector<std::string> lines;     ///< bytes, the header first
    std::vector<std::string> messages;  ///< what is to be logged of it
    bool isChanged = false;             ///< whether the lines differ from the file's
    std::vector<WaitingEntry> waiting;  ///< entries that come back when their songs do

    /// Nothing but a header is left, and nothing will come back.
    bool IsEmpty() const { return lines.size() < 2 && waiting.empty(); }
};

/// Drops entries that resolve no longer or twice, and lets the others follow their songs to their
/// present positions, by the run's working set. Entries whose songs wait for their files are taken
/// out; those that were taken out earlier (`waiting`) get their places back when the songs are
/// there. Failure: SubscriptOutOfRange for a list of too many
/// lines.
RepairedList Repair(Run& run, const TrackIndex& tracks, const std::string& name,
                    std::string_view text, std::span<const WaitingEntry> waiting = {});

}  // namespace quillon
