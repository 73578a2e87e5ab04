#include "reconcile/missing_music.h"

#include <memory>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "database/missing_tracks.h"
#include "platform/basic_text.h"
#include "platform/database.h"
#include "reconcile/walk.h"
#include "run/log.h"
#include "run/paths.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr std::string_view OwnedTracks =
    "FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID WHERE Albums.Player=1001";

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

void FindTracks(Connection& connection, MissingMusic& missing) {
    const std::unique_ptr<RecordSet> rows = connection.Query(
        "SELECT Tracks.SoundFile, Albums.ID " + std::string(OwnedTracks) + " AND Tracks.Track=0");
    for (; !rows->IsEof(); rows->MoveNext())
        missing.tracks.push_back({rows->Text("SoundFile"), rows->Integer("ID")});
}

void FindAlbums(Connection& connection, MissingMusic& missing) {
    std::unordered_map<std::int64_t, std::size_t> tracks;
    for (const MissingMusic::Track& track : missing.tracks)
        ++tracks[track.album];
    const std::unique_ptr<RecordSet> rows =
        connection.Query("SELECT ID, Artist, Title FROM Albums WHERE Tracks=0 AND Player=1001");
    for (; !rows->IsEof(); rows->MoveNext()) {
        const std::int64_t id = rows->Integer("ID");
        missing.albums.push_back(
            {id, rows->Text("Artist") + '\\' + rows->Text("Title"), tracks[id]});
    }
}

/// ", 2 tracks"; nothing for none.
std::string TracksText(std::size_t count) {
    if (count == 0) return "";
    return ", " + std::to_string(count) + (count == 1 ? " track" : " tracks");
}

void TellWhatIsGone(Run& run, const MissingMusic& missing, bool albumsAreGone) {
    std::unordered_set<std::int64_t> told;
    if (albumsAreGone) {
        for (const MissingMusic::Album& album : missing.albums) {
            told.insert(album.id);
            WriteLog(run, LogSource,
                     "Album removed, its files were not found: " + album.name +
                         TracksText(album.tracks));
        }
    }
    for (const MissingMusic::Track& track : missing.tracks) {
        if (told.contains(track.album)) continue;
        WriteLog(run, LogSource, "Track removed, its file was not found: " + track.soundFile);
    }
}

}  // namespace

MissingMusic FindMissingMusic(Walk& walk) {
    MissingMusic missing;
    Connection& connection = *walk.run.connection;
    FindTracks(connection, missing);
    FindAlbums(connection, missing);
    if (missing.tracks.empty()) return missing;
    const std::unique_ptr<RecordSet> owned =
        connection.Query("SELECT Count(*) AS Total " + std::string(OwnedTracks));
    missing.planned.outOf = static_cast<std::size_t>(owned->Integer("Total"));
    Doubts doubts(walk.roots);
    for (const MissingMusic::Track& track : missing.tracks) {
        missing.planned.names.push_back(track.soundFile);
        doubts.Look(track.soundFile);
    }
    missing.planned.doubt = doubts.Clause();
    return missing;
}

void SweepMissingMusic(Walk& walk, const MissingMusic& missing) {
    Run& run = walk.run;
    Steps steps(run, "RefreshDatabase");
    const bool tracksAreGone = DeleteMissingTracks(run);
    const bool albumsAreGone =
        steps.TryAs("Refresh Database Track=0 Query", 3, [&run] { DeleteMissingAlbums(run); });
    if (!tracksAreGone) return;
    for (const std::string& name : missing.planned.names)
        run.removals.Note(Removable::Tracks, name);
    TellWhatIsGone(run, missing, albumsAreGone);
}

}  // namespace quillon
