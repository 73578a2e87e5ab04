#include "playlists/track_index.h"

#include <algorithm>
#include <string>

#include "database/snapshot_file.h"
#include "run/paths.h"

namespace quillon {
namespace {

/// What stays when the file is renamed in its folder.
std::uint32_t OriginFingerprint(const TrackRow& track, std::string_view path) {
    std::string origin(path.substr(0, path.rfind('\\') + 1));
    if (track.added) origin += std::to_string(track.added->days);
    return Fingerprint(origin);
}

bool IsListed(const TrackRow& track) {
    return !track.isGone && !track.cdjid.IsNull();
}

std::uint32_t PlaceHash(const TextRules& rules, std::string_view cdjid, std::int32_t number) {
    return rules.Hash(cdjid, static_cast<std::uint32_t>(number));
}

}  // namespace

std::uint32_t SoundFileTrait(std::string_view path) {
    path.remove_prefix(GetDrive(path).size());
    return Fingerprint(path);
}

SongTraits TraitsOf(const TrackRow& track) {
    std::string_view path = track.soundFile;
    path.remove_prefix(GetDrive(path).size());
    return {.soundFile = SoundFileTrait(path), .origin = OriginFingerprint(track, path)};
}

std::int32_t IdOf(const TrackRow& track) {
    return static_cast<std::int32_t>(track.id);
}

std::int32_t PlaceOf(const TrackRow& track) {
    return track.number.Truth().value_or(0);
}

bool TrackIndex::IsEmpty() const {
    return std::ranges::none_of(library_.Tracks(), IsListed);
}

const TrackIndex::Places& TrackIndex::Known() const {
    if (places_) return *places_;
    places_.emplace();
    const TextRules& rules = library_.Rules();
    for (const TrackRow& track : library_.Tracks()) {
        if (!IsListed(track)) continue;
        // Numbers may be taken twice in an album; then the first row has the place.
        if (FindPlace(track.cdjid, PlaceOf(track)) == nullptr)
            places_->tracks.Add(PlaceHash(rules, track.cdjid, PlaceOf(track)), track.place);
        if (!HasAlbum(track.cdjid)) places_->albums.Add(rules.Hash(track.cdjid), track.place);
    }
    return *places_;
}

bool TrackIndex::HasAlbum(std::string_view cdjid) const {
    const TextRules& rules = library_.Rules();
    bool isThere = false;
    Known().albums.ForEach(rules.Hash(cdjid), [&](RowIndex::Row row) {
        isThere |= rules.AreEqual(library_.Tracks()[row].cdjid, cdjid);
    });
    return isThere;
}

const TrackRow* TrackIndex::FindId(std::int32_t id) const {
    const TrackRow* const track = library_.FindTrack(TrackId{id});
    return track != nullptr && IsListed(*track) ? track : nullptr;
}

const TrackRow* TrackIndex::FindPlace(std::string_view cdjid, std::int32_t number) const {
    const TextRules& rules = library_.Rules();
    const TrackRow* found = nullptr;
    Known().tracks.ForEach(PlaceHash(rules, cdjid, number), [&](RowIndex::Row row) {
        const TrackRow& track = library_.Tracks()[row];
        if (PlaceOf(track) == number && rules.AreEqual(track.cdjid, cdjid)) found = &track;
    });
    return found;
}

}  // namespace quillon
