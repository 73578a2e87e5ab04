#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <unordered_set>

#include "database/mark_snapshot.h"
#include "database/marks.h"
#include "database/snapshot_file.h"
#include "database/track_numbers.h"
#include "platform/basic_text.h"
#include "platform/database.h"
#include "platform/files.h"
#include "run/run.h"

namespace quillon {
namespace {

/// Tells which rows stand for something below folders that could not be visited.
class UnlistedRows {
  public:
    explicit UnlistedRows(const std::vector<UnlistedFolder>& folders) {
        for (const UnlistedFolder& folder : folders) {
            std::string path = LowerCase(folder.path);
            while (path.ends_with('\\'))
                path.pop_back();
            paths_.insert(std::move(path));
            if (folder.artist.empty()) {
                wholeRoot_ = true;
            } else {
                names_.insert(NameKey(folder.artist, folder.album));
            }
        }
    }

    bool HoldTrack(std::string_view soundFile) const {
        std::string path = LowerCase(soundFile);
        while (!paths_.contains(path)) {
            const std::size_t parent = path.rfind('\\');
            if (parent == std::string::npos) return false;
            path.resize(parent);
        }
        return true;
    }

    bool NameAlbum(std::string_view artist, std::string_view title) const {
        return names_.contains(NameKey(artist, "")) || names_.contains(NameKey(artist, title));
    }

    /// A root that cannot be listed does not tell which albums without tracks it held.
    bool HoldWholeRoot() const { return wholeRoot_; }

  private:
    static std::string NameKey(std::string_view artist, std::string_view album) {
        return LowerCase(artist) + '\\' + LowerCase(album);
    }

    std::unordered_set<std::string> paths_, names_;
    bool wholeRoot_ = false;
};

/// The marked tracks and albums that the folders stand for, and their return to what they were.
class PartialRestoration {
  public:
    PartialRestoration(Connection& connection, const MarkSnapshot& snapshot,
                       const UnlistedRows& unlisted)
        : connection_(connection), snapshot_(snapshot), unlisted_(unlisted) {}

    /// Returns how many there are.
    std::size_t RestoreTracks() {
        struct Change {
            std::int64_t id;
            MarkedValue number;
        };
        std::vector<Change> changes;
        std::map<std::string, std::unordered_set<std::int64_t>> unsettled;
        const auto rows = connection_.Query(
            "SELECT Tracks.ID, Tracks.CDJID, Tracks.Track, Tracks.SoundFile, Tracks.DateAdded, "
            "Albums.Tracks AS AlbumTracks "
            "FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID "
            "WHERE Albums.Player=1001 AND (Tracks.Track=0 OR Albums.Tracks=0)");
        for (; !rows->IsEof(); rows->MoveNext()) {
            const std::string soundFile = rows->Text("SoundFile");
            if (!unlisted_.HoldTrack(soundFile)) continue;
            const std::int64_t id = rows->Integer("ID"), present = rows->Integer("Track");
            const std::string cdjid = rows->Text("CDJID");
            ++keptTracks_[LowerCase(cdjid)];
            const MarkedTrack* const before = snapshot_.FindTrack(id);
            const bool known = before != nullptr && before->number != 0 &&
                               before->IsRow(soundFile, rows->Get("DateAdded"));
            // The comparison of tags may have given it another number before the folder came out of
            // reach. Where the walk has been, the album has its count again.
            if (known && before->number != present) changes.push_back({id, before->number});
            // Where the walk has been, it has handed out numbers to the files that it saw.
            const bool isShared = rows->Integer("AlbumTracks") != 0;
            if (isShared || (!known && present <= 0)) unsettled[cdjid].insert(id);
        }
        const auto cursor = connection_.OpenTable("Tracks");
        for (const Change& change : changes)
            Write(*cursor, change.id, "Track", change.number);
        for (const auto& [cdjid, ids] : unsettled)
            NumberApart(connection_, *cursor, cdjid, ids);
        std::size_t count = 0;
        for (const auto& [cdjid, tracks] : keptTracks_)
            count += static_cast<std::size_t>(tracks);
        return count;
    }

    void RestoreAlbums() {
        struct Change {
            std::int64_t id;
            MarkedValue count;
        };
        std::vector<Change> changes;
        const auto rows = connection_.Query(
            "SELECT ID, CDJID, Title, Artist, Tracks FROM Albums WHERE Player=1001");
        for (; !rows->IsEof(); rows->MoveNext()) {
            const std::int64_t id = rows->Integer("ID");
            const auto kept = keptTracks_.find(LowerCase(rows->Text("CDJID")));
            if (const std::int64_t seen = rows->Integer("Tracks"); seen != 0) {
                if (kept != keptTracks_.end())
                    changes.push_back({id, static_cast<std::int32_t>(seen) + kept->second});
                continue;
            }
            const MarkedAlbum* const before = snapshot_.FindAlbum(id);
            const bool countKnown = before != nullptr && before->count != 0;
            if (kept == keptTracks_.end() &&
                !unlisted_.NameAlbum(rows->Text("Artist"), rows->Text("Title")) &&
                !(unlisted_.HoldWholeRoot() && countKnown && !HadTracks(id))) {
                continue;
            }
            const std::int32_t present = kept == keptTracks_.end() ? 1 : kept->second;
            changes.push_back({id, countKnown ? before->count : present});
        }
        const auto cursor = connection_.OpenTable("Albums");
        for (const Change& change : changes)
            Write(*cursor, change.id, "Tracks", change.count);
    }

  private:
    static void Write(RecordSet& cursor, std::int64_t id, std::string_view field,
                      MarkedValue value) {
        if (!MoveToId(cursor, id)) return;
        cursor.Set(field, value ? Value(std::int64_t{*value}) : Value(Null{}));
        cursor.Update();
    }

    bool HadTracks(std::int64_t album) {
        if (albumsWithTracks_.empty()) {
            for (const MarkedTrack& track : snapshot_.Tracks())
                albumsWithTracks_.insert(track.album);
        }
        return albumsWithTracks_.contains(album);
    }

    Connection& connection_;
    const MarkSnapshot& snapshot_;
    const UnlistedRows& unlisted_;
    std::map<std::string, std::int32_t> keptTracks_;  ///< by CDJID in lower case
    std::unordered_set<std::int64_t> albumsWithTracks_;
};

}  // namespace

std::size_t RestoreMarksBelow(Run& run, const std::vector<UnlistedFolder>& folders) {
    if (folders.empty()) return 0;
    std::optional<MarkSnapshot> snapshot;
    if (MarkSnapshotExists(run)) {
        snapshot = ReadMarkSnapshot(run.files, MarkSnapshotPath(run.settings.Nirvis_CDJ_DB));
    }
    // Without a snapshot the rows still must not be swept; they get free numbers.
    const MarkSnapshot before = snapshot ? std::move(*snapshot) : MarkSnapshot();
    const UnlistedRows unlisted(folders);
    PartialRestoration restoration(*run.connection, before, unlisted);
    const std::size_t tracks = restoration.RestoreTracks();
    restoration.RestoreAlbums();
    return tracks;
}

}  // namespace quillon
