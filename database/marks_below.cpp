#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "database/album_key.h"
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
        for (std::size_t i = 0; i < folders.size(); ++i) {
            const UnlistedFolder& folder = folders[i];
            std::string path = LowerCase(folder.path);
            while (path.ends_with('\\'))
                path.pop_back();
            paths_.try_emplace(std::move(path), i);
            if (folder.artist.empty()) {
                wholeRoot_ = true;
            } else {
                names_.insert(AlbumKey(folder.artist, folder.album));
            }
        }
    }

    /// The position of the folder that holds the track, or is it.
    std::optional<std::size_t> FolderOf(std::string_view soundFile) const {
        std::string path = LowerCase(soundFile);
        while (true) {
            if (const auto found = paths_.find(path); found != paths_.end()) return found->second;
            const std::size_t parent = path.rfind('\\');
            if (parent == std::string::npos) return std::nullopt;
            path.resize(parent);
        }
    }

    bool NameAlbum(std::string_view artist, std::string_view title) const {
        return names_.contains(AlbumKey(artist, "")) || names_.contains(AlbumKey(artist, title));
    }

    /// A root that cannot be listed does not tell which albums without tracks it held.
    bool HoldWholeRoot() const { return wholeRoot_; }

  private:
    std::unordered_map<std::string, std::size_t> paths_;  ///< in lower case
    std::unordered_set<std::string> names_;
    bool wholeRoot_ = false;
};

/// The marked tracks and albums that the folders stand for, and their return to what they were.
class PartialRestoration {
  public:
    PartialRestoration(Connection& connection, const MarkSnapshot& snapshot,
                       const UnlistedRows& unlisted)
        : connection_(connection), snapshot_(snapshot), unlisted_(unlisted) {}

    /// Adds how many there are to the count of their folder.
    void RestoreTracks(std::vector<std::size_t>& counts) {
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
            const std::optional<std::size_t> folder = unlisted_.FolderOf(soundFile);
            if (!folder) continue;
            ++counts.at(*folder);
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

std::unordered_set<std::string> AlbumsBelow(Connection& connection,
                                            const std::vector<std::string>& folders) {
    std::vector<UnlistedFolder> unlistedFolders;
    unlistedFolders.reserve(folders.size());
    for (const std::string& folder : folders)
        unlistedFolders.push_back({folder, "", ""});
    const UnlistedRows unlisted(unlistedFolders);
    std::unordered_set<std::string> albums;
    const std::unique_ptr<RecordSet> rows = connection.Query(
        "SELECT Tracks.SoundFile, Albums.Artist, Albums.Title "
        "FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID WHERE Albums.Player=1001");
    for (; !rows->IsEof(); rows->MoveNext()) {
        if (unlisted.FolderOf(rows->Text("SoundFile")))
            albums.insert(AlbumKey(rows->Text("Artist"), rows->Text("Title")));
    }
    return albums;
}

std::vector<std::size_t> RestoreMarksBelow(Run& run, const std::vector<UnlistedFolder>& folders) {
    std::vector<std::size_t> counts(folders.size());
    if (folders.empty()) return counts;
    std::optional<MarkSnapshot> snapshot;
    if (MarkSnapshotExists(run)) {
        snapshot = ReadMarkSnapshot(run.files, MarkSnapshotPath(run.settings.Nirvis_CDJ_DB));
    }
    // Without a snapshot the rows still must not be swept; they get free numbers.
    const MarkSnapshot before = snapshot ? std::move(*snapshot) : MarkSnapshot();
    const UnlistedRows unlisted(folders);
    PartialRestoration restoration(*run.connection, before, unlisted);
    restoration.RestoreTracks(counts);
    restoration.RestoreAlbums();
    return counts;
}

}  // namespace quillon
