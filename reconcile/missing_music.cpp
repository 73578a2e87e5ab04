#include "reconcile/missing_music.h"

#include <memory>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "platform/basic_text.h"
#include "reconcile/walk.h"
#include "run/log.h"
#include "run/paths.h"
#include "run/steps.h"

namespace quillon {
namespace {

/// The library folders, and what is doubtful about tracks below them that are missing.
class Doubts {
  public:
    explicit Doubts(const std::vector<WalkedRoot>& roots) {
        for (const WalkedRoot& root : roots)
            roots_.push_back({root.path, LowerCase(AddBackslash(root.path)), root.hasMusic});
    }

    /// Something may stand before the drive in a stored path.
    void Look(const std::string& soundFile) {
        const std::string path = LowerCase(soundFile);
        bool isInside = false;
        for (Root& root : roots_) {
            if (path.find(root.beginning) == std::string::npos) continue;
            isInside = true;
            root.misses = true;
        }
        if (!isInside) ++outside_;
    }

    std::string Clause() const {
        for (const Root& root : roots_) {
            if (root.misses && !root.hasMusic) return "no music was found in " + root.path;
        }
        if (outside_ == 0) return "";
        return std::to_string(outside_) + " of them " + (outside_ == 1 ? "lies" : "lie") +
               " in none of the library folders";
    }

  private:
    struct Root {
        std::string path, beginning;
        bool hasMusic = false;
        bool misses = false;
    };
    std::vector<Root> roots_;
    std::size_t outside_ = 0;
};

void TellWhatIsGone(Run& run, const MissingMusic& missing, bool albumsAreGone) {
    std::unordered_map<const AlbumRow*, std::size_t> tracks;
    for (const MissingMusic::Track& track : missing.tracks)
        ++tracks[track.album];
    std::unordered_set<const AlbumRow*> told;
    if (albumsAreGone) {
        for (const AlbumRow* const album : missing.albums) {
            told.insert(album);
            const std::size_t count = tracks[album];
            WriteLog(run, LogSource,
                     "Album removed, its files were not found: " + NameOf(*album) +
                         (count == 0 ? "" : ", " + TracksText(count)));
        }
    }
    for (const MissingMusic::Track& track : missing.tracks) {
        if (told.contains(track.album)) continue;
        WriteLog(run, LogSource,
                 "Track removed, its file was not found: " + track.row->soundFile.Text());
    }
}

/// Whether the comparison of tags has found its file where the walk does not come: in folders below
/// a library in the flat layout, say. Such a track waits with its album; where nothing waits, it
/// keeps the number from its tag, as ever.
bool IsPassedBy(const Walk& walk, const TrackRow& track) {
    if (!track.tagNumber) return false;
    const AlbumRow* const album = walk.library.AlbumOf(track);
    return album != nullptr && album->count.Value() == 0;
}

}  // namespace

std::string NameOf(const AlbumRow& album) {
    return album.artist.Text() + '\\' + album.title.Text();
}

std::string TracksText(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " track" : " tracks");
}

PlannedRemoval PlanRemoval(const Walk& walk, const std::vector<MissingMusic::Track>& tracks,
                           std::size_t owned) {
    PlannedRemoval planned;
    Doubts doubts(walk.roots);
    for (const MissingMusic::Track& track : tracks) {
        planned.names.push_back(track.row->soundFile);
        doubts.Look(track.row->soundFile);
    }
    planned.outOf = owned;
    planned.doubt = doubts.Clause();
    return planned;
}

MissingMusic FindMissingMusic(Walk& walk) {
    MissingMusic missing;
    std::size_t owned = 0;
    for (TrackRow& track : walk.library.Tracks()) {
        if (track.isGone || !track.isOwn) continue;
        ++owned;
        if (walk.waiting && IsPassedBy(walk, track)) track.number.Mark();
        if (track.number.Value() == 0)
            missing.tracks.push_back({&track, walk.library.AlbumOf(track)});
    }
    for (AlbumRow& album : walk.library.Albums()) {
        if (album.isOwn && !album.isGone && album.count.Value() == 0)
            missing.albums.push_back(&album);
    }
    missing.planned = PlanRemoval(walk, missing.tracks, owned);
    return missing;
}

bool DeleteMissingTracks(Walk& walk, const MissingMusic& missing) {
    Steps steps(walk.run, "Delete Missing Tracks Error:");
    return steps.Try([&] {
        for (const MissingMusic::Track& track : missing.tracks) {
            walk.library.Remove(*track.row);
            ++walk.run.counts.tracksRemoved;
            walk.run.removals.Note(Removable::Tracks, track.row->soundFile);
        }
    });
}

void SweepMissingMusic(Walk& walk, const MissingMusic& missing) {
    Run& run = walk.run;
    Steps steps(run, "RefreshDatabase");
    const bool tracksAreGone = DeleteMissingTracks(walk, missing);
    const bool albumsAreGone =
        steps.TryAs("Refresh Database Track=0 Query", RefreshStep::ChangeRows, [&] {
            for (AlbumRow* const album : missing.albums) {
                // Its tracks could not be removed, and would have no album.
                if (!tracksAreGone && !walk.library.TracksOf(album->cdjid).empty()) continue;
                walk.library.Remove(*album);
                ++run.counts.albumsRemoved;
            }
        });
    if (tracksAreGone) TellWhatIsGone(run, missing, albumsAreGone);
}

}  // namespace quillon
