#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace quillon {

class Host;
class Run;

/// How much a run may remove before it takes a fault for the cause: [Safety] of the host's settings
/// file. A drive that is not mounted is an empty folder, and must not cost anybody ratings.
struct SafetyLimits {
    bool Brake = true;
    std::int32_t MaxRemovedTracks = 50;   ///< with the next: the brake trips where both are passed
    std::int32_t MaxRemovedPercent = 20;  ///< of the tool's own tracks
    std::int32_t MaxRemovedFiles = 20;
    std::int32_t MaxRemovedPlaylists = 5;
};

/// What is not there or is no number has the value above.
SafetyLimits ReadSafetyLimits(Host& host);

/// What a run can remove that belongs to the user.
enum class Removable { Tracks, MusicFiles, Playlists };
constexpr std::array Removables{Removable::Tracks, Removable::MusicFiles, Removable::Playlists};

/// "24 tracks", "1 music file".
std::string NumberOf(std::size_t count, Removable kind);

/// What a phase is about to remove, the whole of it.
struct PlannedRemoval {
    Removable kind = Removable::Tracks;
    std::vector<std::string> names;  ///< paths, or what else people know them by
    std::size_t outOf = 0;           ///< tracks: how many there are; else not used
    /// Why these cannot be told from what is merely out of sight: then the brake trips whatever the
    /// numbers. A clause such as "no music was found below D:\Music".
    std::string doubt = {};
};

/// The only way in which rows of tracks, music files and playlists are removed. A phase asks once
/// for everything it would remove, before it removes any of it, and reports what it has removed.
class Removals {
  public:
    static constexpr std::size_t MostNames = 10;

    /// What was removed, for the summary.
    struct Gone {
        std::size_t count = 0;
        std::vector<std::string> names;  ///< the first ones, at most MostNames
    };
    using AllGone = std::array<Gone, Removables.size()>;  ///< in the order of `Removables`

    SafetyLimits limits;
    /// The person has said that this run may remove whatever it would.
    bool allAllowed = false;

    /// Whether all of these may go. Once the answer is no, it stays no for this run: that is logged
    /// as an error, with the numbers, the first names and how to go on. Counts add up over a run.
    bool Allow(Run& run, const PlannedRemoval& planned);

    /// Whether the answer was no.
    bool Braked() const { return braked_; }

    /// These have gone.
    void Note(Removable kind, const std::string& name);
    /// Whether this run has removed the music file of that path.
    bool HasRemovedFile(std::string_view path) const;
    const Gone& Of(Removable kind) const { return gone_.at(static_cast<std::size_t>(kind)); }
    const AllGone& All() const { return gone_; }

  private:
    std::string Objection(const PlannedRemoval& planned) const;
    std::string LimitPassed(Removable kind, std::size_t count, std::size_t outOf) const;

    std::array<std::size_t, Removables.size()> allowed_{};
    AllGone gone_;
    std::unordered_set<std::string> removedFiles_;  ///< paths of music in lower case
    bool braked_ = false;
};

}  // namespace quillon
