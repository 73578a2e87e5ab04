#include "database/marks.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "database/mark_snapshot.h"
#include "database/snapshot_file.h"
#include "database/track_numbers.h"
#include "platform/database.h"
#include "platform/files.h"
#include "run/log.h"
#include "run/run.h"

namespace quillon {
namespace {

Value FieldValue(MarkedValue value) {
    if (!value) return Null{};
    return std::int64_t{*value};
}

/// An album without an identifier may have got one since.
bool IsAlbum(const MarkedAlbum& before, std::string_view cdjid) {
    return before.cdjid == Fingerprint(cdjid) || before.cdjid == Fingerprint("");
}

/// Puts everything of a snapshot back. Rows are read first and written afterwards, since a result
/// that is being walked must not change.
class Restoration {
  public:
    Restoration(Connection& connection, const MarkSnapshot& snapshot)
        : connection_(connection), snapshot_(snapshot) {}

    void RestoreAlbums() {
        struct Change {
            std::int64_t id;
            MarkedValue count;
        };
        std::vector<Change> changes;
        const auto rows =
            connection_.Query("SELECT ID, CDJID, Tracks FROM Albums WHERE Player=1001");
        for (; !rows->IsEof(); rows->MoveNext()) {
            const std::int64_t id = rows->Integer("ID");
            const std::string cdjid = rows->Text("CDJID");
            const MarkedAlbum* const before = snapshot_.FindAlbum(id);
            if (before == nullptr || !IsAlbum(*before, cdjid)) continue;
            cdjids_.emplace(id, cdjid);
            if (rows->Get("Tracks") != FieldValue(before->count))
                changes.push_back({id, before->count});
        }
        const auto cursor = connection_.OpenTable("Albums");
        for (const Change& change : changes) {
            if (!MoveToId(*cursor, change.id)) continue;
            cursor->Set("Tracks", FieldValue(change.count));
            cursor->Update();
        }
    }

    void RestoreTracks() {
        struct Change {
            std::int64_t id;
            MarkedValue number;
            const std::string* cdjid;
        };
        std::vector<Change> changes;
        std::map<std::string, std::unordered_set<std::int64_t>> newcomers;
        const auto rows = connection_.Query(
            "SELECT Tracks.ID, Tracks.CDJID, Tracks.Track, Tracks.SoundFile, Tracks.DateAdded "
            "FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID "
            "WHERE Albums.Player=1001");
        for (; !rows->IsEof(); rows->MoveNext()) {
            const std::int64_t id = rows->Integer("ID");
            const std::string cdjid = rows->Text("CDJID");
            const MarkedTrack* const before = Before(id, *rows);
            if (before == nullptr) {
                newcomers[cdjid].insert(id);
                continue;
            }
            const std::string& home = cdjids_.at(before->album);
            if (rows->Get("Track") != FieldValue(before->number) || home != cdjid)
                changes.push_back({id, before->number, &home});
        }
        const auto cursor = connection_.OpenTable("Tracks");
        for (const Change& change : changes) {
            if (!MoveToId(*cursor, change.id)) continue;
            cursor->Set("Track", FieldValue(change.number));
            if (cursor->Text("CDJID") != *change.cdjid) cursor->Set("CDJID", *change.cdjid);
            cursor->Update();
        }
        for (const auto& [cdjid, ids] : newcomers)
            NumberApart(connection_, *cursor, cdjid, ids);
    }

  private:
    /// What the snapshot says of a track; null when it is not in there or its album is gone.
    const MarkedTrack* Before(std::int64_t id, const RecordSet& row) const {
        const MarkedTrack* const track = snapshot_.FindTrack(id);
        const bool fits = track != nullptr &&
                          track->IsRow(row.Text("SoundFile"), row.Get("DateAdded")) &&
                          cdjids_.contains(track->album);
        return fits ? track : nullptr;
    }

    Connection& connection_;
    const MarkSnapshot& snapshot_;
    std::unordered_map<std::int64_t, std::string> cdjids_;  ///< by ID of an album still there
};

}  // namespace

std::string MarkSnapshotPath(std::string_view database) {
    return std::string(database) + ".marks";
}

void TakeMarkSnapshot(Run& run) {
    RestoreMarks(run);
    WriteMarkSnapshot(run.files, MarkSnapshotPath(run.settings.Nirvis_CDJ_DB),
                      CaptureMarks(*run.connection));
}

bool MarkSnapshotExists(Run& run) {
    return run.files.FileExists(MarkSnapshotPath(run.settings.Nirvis_CDJ_DB));
}

void RestoreMarks(Run& run) {
    if (!MarkSnapshotExists(run)) return;
    const std::string path = MarkSnapshotPath(run.settings.Nirvis_CDJ_DB);
    if (const std::optional<MarkSnapshot> snapshot = ReadMarkSnapshot(run.files, path)) {
        Restoration restoration(*run.connection, *snapshot);
        restoration.RestoreAlbums();
        restoration.RestoreTracks();
    } else {
        LogError(run, LogSource, "Mark snapshot is damaged, nothing is taken from it: " + path);
    }
    DiscardMarkSnapshot(run);
}

void DiscardMarkSnapshot(Run& run) {
    run.Flush();
    if (MarkSnapshotExists(run)) run.files.DeleteFile(MarkSnapshotPath(run.settings.Nirvis_CDJ_DB));
}

}  // namespace quillon
