#include "database/mark_snapshot.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>
#include <variant>

#include "database/snapshot_file.h"

namespace quillon {
namespace {

constexpr std::string_view AlbumKind = "Album", TrackKind = "Track";
constexpr std::array Kinds{AlbumKind, TrackKind};
constexpr SnapshotFormat Format{.title = "Quillon mark snapshot 2", .kinds = Kinds};

template <typename Row>
void SortById(std::vector<Row>& rows) {
    const auto less = [](const Row& a, const Row& b) { return a.id < b.id; };
    const auto same = [](const Row& a, const Row& b) { return a.id == b.id; };
    std::sort(rows.begin(), rows.end(), less);
    // A join over a duplicated identifier names its tracks more than once.
    rows.erase(std::unique(rows.begin(), rows.end(), same), rows.end());
    rows.shrink_to_fit();
}

template <typename Row>
const Row* FindById(const std::vector<Row>& rows, std::int64_t id) {
    const auto found =
        std::lower_bound(rows.begin(), rows.end(), id,
                         [](const Row& row, std::int64_t wanted) { return row.id < wanted; });
    return found != rows.end() && found->id == id ? &*found : nullptr;
}

MarkedValue MarkedField(const RecordSet& rows, std::string_view field) {
    if (IsNull(rows.Get(field))) return std::nullopt;
    return static_cast<std::int32_t>(rows.Integer(field));
}

}  // namespace

std::uint32_t OriginFingerprint(std::string_view soundFile, const Value& dateAdded) {
    std::string origin(soundFile.substr(0, soundFile.rfind('\\') + 1));
    if (const auto* const date = std::get_if<DateTime>(&dateAdded))
        origin += std::to_string(date->days);
    return Fingerprint(origin);
}

bool MarkedTrack::IsRow(std::string_view rowSoundFile, const Value& dateAdded) const {
    return soundFile == Fingerprint(rowSoundFile) ||
           origin == OriginFingerprint(rowSoundFile, dateAdded);
}

MarkSnapshot::MarkSnapshot(std::vector<MarkedAlbum> albums, std::vector<MarkedTrack> tracks)
    : albums_(std::move(albums)), tracks_(std::move(tracks)) {
    SortById(albums_);
    SortById(tracks_);
}

const MarkedAlbum* MarkSnapshot::FindAlbum(std::int64_t id) const {
    return FindById(albums_, id);
}

const MarkedTrack* MarkSnapshot::FindTrack(std::int64_t id) const {
    return FindById(tracks_, id);
}

MarkSnapshot CaptureMarks(Connection& connection) {
    std::vector<MarkedAlbum> albums;
    const auto albumRows =
        connection.Query("SELECT ID, CDJID, Tracks FROM Albums WHERE Player=1001");
    for (; !albumRows->IsEof(); albumRows->MoveNext()) {
        albums.push_back({.id = static_cast<std::int32_t>(albumRows->Integer("ID")),
                          .count = MarkedField(*albumRows, "Tracks"),
                          .cdjid = Fingerprint(albumRows->Text("CDJID"))});
    }
    std::vector<MarkedTrack> tracks;
    const auto trackRows = connection.Query(
        "SELECT Tracks.ID AS TrackID, Tracks.Track, Tracks.SoundFile, Tracks.DateAdded, "
        "Albums.ID AS AlbumID "
        "FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID "
        "WHERE Albums.Player=1001");
    for (; !trackRows->IsEof(); trackRows->MoveNext()) {
        const std::string soundFile = trackRows->Text("SoundFile");
        tracks.push_back({.id = static_cast<std::int32_t>(trackRows->Integer("TrackID")),
                          .number = MarkedField(*trackRows, "Track"),
                          .album = static_cast<std::int32_t>(trackRows->Integer("AlbumID")),
                          .soundFile = Fingerprint(soundFile),
                          .origin = OriginFingerprint(soundFile, trackRows->Get("DateAdded"))});
    }
    return {std::move(albums), std::move(tracks)};
}

void WriteMarkSnapshot(Files& files, std::string_view path, const MarkSnapshot& snapshot) {
    SnapshotWriter file(files, path, Format);
    for (const MarkedAlbum& album : snapshot.Albums())
        file.Line(AlbumKind).Whole(album.id).Whole(album.count).Whole(album.cdjid);
    for (const MarkedTrack& track : snapshot.Tracks()) {
        file.Line(TrackKind)
            .Whole(track.id)
            .Whole(track.number)
            .Whole(track.album)
            .Whole(track.soundFile)
            .Whole(track.origin);
    }
    file.Close();
}

std::optional<MarkSnapshot> ReadMarkSnapshot(Files& files, std::string_view path) {
    std::vector<MarkedAlbum> albums;
    std::vector<MarkedTrack> tracks;
    const auto visit = [&](std::string_view kind, SnapshotLine& line) {
        if (kind == AlbumKind) {
            albums.push_back({.id = line.Whole<std::int32_t>(),
                              .count = line.WholeOrNull<std::int32_t>(),
                              .cdjid = line.Whole<std::uint32_t>()});
        } else {
            tracks.push_back({.id = line.Whole<std::int32_t>(),
                              .number = line.WholeOrNull<std::int32_t>(),
                              .album = line.Whole<std::int32_t>(),
                              .soundFile = line.Whole<std::uint32_t>(),
                              .origin = line.Whole<std::uint32_t>()});
        }
    };
    if (!ReadSnapshot(files, path, Format, visit)) return std::nullopt;
    return MarkSnapshot(std::move(albums), std::move(tracks));
}

}  // namespace quillon
