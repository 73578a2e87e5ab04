#include "playlists/track_index.h"

#include <memory>

#include "database/mark_snapshot.h"
#include "database/snapshot_file.h"
#include "run/paths.h"

namespace quillon {
namespace {

std::uint32_t IdHash(std::int32_t id) {
    return MixedHash(static_cast<std::uint32_t>(id));
}

std::uint32_t PlaceHash(TextPool::Number album, std::int32_t number) {
    return MixedHash(album, static_cast<std::uint32_t>(number));
}

SongTraits TraitsOf(const RecordSet& row) {
    std::string path = row.Text("SoundFile");
    path.erase(0, GetDrive(path).size());
    return {.soundFile = Fingerprint(path),
            .origin = OriginFingerprint(path, row.Get("DateAdded"))};
}

}  // namespace

TrackIndex::TrackIndex(Connection& connection) {
    const std::unique_ptr<RecordSet> rows = connection.Query(
        "SELECT ID, CDJID, Track, SoundFile, DateAdded FROM Tracks WHERE CDJID Is Not Null");
    for (; !rows->IsEof(); rows->MoveNext()) {
        Add({.id = static_cast<std::int32_t>(rows->Integer("ID")),
             .number = static_cast<std::int32_t>(rows->Integer("Track")),
             .album = cdjids_.Add(rows->Text("CDJID")),
             .traits = TraitsOf(*rows)});
    }
}

void TrackIndex::Add(const IndexedTrack& track) {
    const auto row = static_cast<HashIndex::Row>(tracks_.size());
    // Numbers may be taken twice in an album; then the first row has the place.
    if (FindId(track.id) == nullptr) byId_.Add(IdHash(track.id), row);
    if (Find(track.album, track.number) == nullptr)
        byPlace_.Add(PlaceHash(track.album, track.number), row);
    tracks_.push_back(track);
}

const IndexedTrack* TrackIndex::Find(TextPool::Number album, std::int32_t number) const {
    const auto row = byPlace_.Find(PlaceHash(album, number), [&](HashIndex::Row at) {
        return tracks_[at].album == album && tracks_[at].number == number;
    });
    return row ? &tracks_[*row] : nullptr;
}

const IndexedTrack* TrackIndex::FindPlace(std::string_view cdjid, std::int32_t number) const {
    const auto album = cdjids_.Find(cdjid);
    return album ? Find(*album, number) : nullptr;
}

const IndexedTrack* TrackIndex::FindId(std::int32_t id) const {
    const auto row =
        byId_.Find(IdHash(id), [&](HashIndex::Row at) { return tracks_[at].id == id; });
    return row ? &tracks_[*row] : nullptr;
}

}  // namespace quillon
