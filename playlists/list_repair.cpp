#include "playlists/list_repair.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_set>
#include <utility>

#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "playlists/pla_line.h"
#include "playlists/playlist_text.h"
#include "playlists/track_index.h"
#include "run/run.h"

namespace quillon {
namespace {

/// The header and 5000 entries. What to do with a longer list is for a person to say, and cutting
/// it would lose entries.
constexpr std::size_t MostLines = 5001;

/// One playlist's lines on their way through the checks.
class Repairing {
  public:
    Repairing(Run& run, const TrackIndex& tracks, const std::string& name)
        : run_(run), tracks_(tracks), name_(name) {}

    RepairedList All(std::string_view text, std::span<const WaitingEntry> waiting) {
        const std::vector<std::string_view> lines = LinesOf(text);
        // The header is kept, whatever it says.
        if (!lines.empty()) Keep(std::string(lines.front()));
        auto next = waiting.begin();
        for (std::size_t i = 1; i < lines.size(); ++i) {
            for (; next != waiting.end() && next->position <= Position(); ++next)
                KeepWaiting(next->song);
            if (std::optional<std::string> kept = Checked(lines[i])) {
                Keep(std::move(*kept));
            } else {
                list_.isChanged = true;
            }
        }
        for (; next != waiting.end(); ++next)
            KeepWaiting(next->song);
        return std::move(list_);
    }

  private:
    void Keep(std::string line) {
        if (list_.lines.size() == MostLines) {
            throw Failure(FailureNumber::SubscriptOutOfRange,
                          "playlist " + name_ + " has more than 5000 entries");
        }
        list_.lines.push_back(std::move(line));
    }

    /// How many entries there are so far, those that wait included.
    std::size_t Position() const {
        const std::size_t lines = list_.lines.empty() ? 0 : list_.lines.size() - 1;
        return lines + list_.waiting.size();
    }

    void Wait(const TrackRow& track) { list_.waiting.push_back({Position(), track.id}); }

    /// An entry that was taken out. Somebody may have put it into the list again.
    void KeepWaiting(TrackId song) {
        const auto id = static_cast<std::int32_t>(song);
        const TrackRow* const track = tracks_.FindId(id);
        if (track == nullptr || run_.playlistEntries.FindSong(id, name_)) return;
        if (PlaceOf(*track) < 1) {
            Wait(*track);
            return;
        }
        if (!songs_.insert(id).second) return;
        const std::string line = PlaLine(track->cdjid, PlaceOf(*track));
        Tell(", " + line + " is back because its file is");
        Keep(Utf8ToAnsi(line));
        list_.isChanged = true;
    }

    /// The line as it is to stand in the file; nothing when it is dropped or waits.
    std::optional<std::string> Checked(std::string_view bytes) {
        const std::string line = AnsiToUtf8(bytes);
        const std::string_view trimmed = Trim(line);
        if (trimmed.empty()) return std::nullopt;
        const std::optional<PlaFields> fields = FirstTwoFields(trimmed);
        if (!fields) return Dropped(line, "of incorrect syntax");
        // A song may have followed its file to another album.
        const bool isAlbumGone = !tracks_.HasAlbum(fields->cdjid);
        if (isAlbumGone && (!FollowsAlbums() || fields->index == WholeAlbumIndex))
            return Dropped(line, "CDJID no longer exists");
        if (fields->index == WholeAlbumIndex) return std::string(bytes);

        const std::optional<std::int32_t> index = WholeIndex(fields->index);
        const auto position =
            index ? run_.playlistEntries.FindPlace(fields->cdjid, *index, name_) : std::nullopt;
        if (!position && isAlbumGone) return Dropped(line, "CDJID no longer exists");
        if (!position) {
            Tell(" record could not be retrieved from temp database for CDJID " +
                 std::string(fields->cdjid) + ", Track " + std::string(fields->index));
            return std::nullopt;
        }
        const PlaylistEntry entry = run_.playlistEntries.At(*position);
        run_.playlistEntries.SetProcessed(*position);
        if (!songs_.insert(entry.ID).second) {
            Tell(" contains duplicate track " + std::string(fields->index) + " on " +
                 std::string(fields->cdjid) + " and was removed");
            return std::nullopt;
        }
        const TrackRow* const track = tracks_.FindId(entry.ID);
        if (track == nullptr) return Dropped(line, "Track ID no longer exists");
        if (track->isWaiting) {
            Tell(", " + line + " is taken out until its file is back");
            Wait(*track);
            return std::nullopt;
        }
        if (PlaceOf(*track) < 1) {
            // Its line would read as the whole album, or as nothing at all.
            Tell(", " + line + " kept as it is because the track has no number");
            return std::string(bytes);
        }
        const bool isTwin = FollowsAlbums() || run_.playlistEntries.HasBecomeAnother(*position);
        return Followed(line, *fields, *track, isTwin);
    }

    /// The line at its song's present position.
    std::string Followed(const std::string& line, const PlaFields& fields, const TrackRow& track,
                         bool isTwin) {
        const std::string_view album = track.cdjid;
        const bool isElsewhere = !EqualIgnoringCase(fields.cdjid, album);
        // The line keeps its album: a list belongs to the albums it was made from. A song that has
        // gone to another one cannot be named that way, so it is at least told; the twin that has
        // taken a song's place is named where it is.
        if (isElsewhere && !isTwin) {
            Tell(", " + line + " names a song that is now on album " + std::string(album));
        }
        const bool followsAlbum = isElsewhere && isTwin;
        const std::string present = PlaLine(followsAlbum ? album : fields.cdjid, PlaceOf(track));
        if (PlaceOf(track) - 1 != WholeIndex(fields.index) || followsAlbum) {
            list_.isChanged = true;
            Tell(", Track # updated from " + std::string(fields.index) + " to " + present);
        }
        return Utf8ToAnsi(present);
    }

    bool FollowsAlbums() const { return run_.movedMusic.FollowMovedFiles; }

    std::nullopt_t Dropped(const std::string& line, std::string_view reason) {
        Tell(", " + line + " removed because " + std::string(reason));
        return std::nullopt;
    }

    void Tell(const std::string& what) { list_.messages.push_back("Playlist " + name_ + what); }

    Run& run_;
    const TrackIndex& tracks_;
    const std::string& name_;
    RepairedList list_;
    std::unordered_set<std::int32_t> songs_;  ///< met so far
};

}  // namespace

RepairedList Repair(Run& run, const TrackIndex& tracks, const std::string& name,
                    std::string_view text, std::span<const WaitingEntry> waiting) {
    return Repairing(run, tracks, name).All(text, waiting);
}

}  // namespace quillon
