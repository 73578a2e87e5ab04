#include "playlists/playlist_snapshot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "database/snapshot_file.h"
#include "platform/basic_text.h"
#include "run/log.h"
#include "run/run.h"

namespace quillon {
namespace {

constexpr std::string_view ListKind = "List", PlacesKind = "Places", ForKind = "For",
                           EntryKind = "Entry";
constexpr std::array Kinds{ListKind, PlacesKind, ForKind, EntryKind};
constexpr SnapshotFormat Format{.title = "Quillon playlist snapshot 2", .kinds = Kinds};

std::string PathOf(const Run& run) {
    return PlaylistSnapshotPath(run.settings.Nirvis_CDJ_DB);
}

void WriteList(SnapshotWriter& file, std::string_view name, const PlaylistContent& content) {
    file.Line(ListKind)
        .Text(name)
        .Whole(static_cast<std::int64_t>(content.size))
        .Whole(content.fingerprint);
}

void WriteEntry(SnapshotWriter& file, const CapturedEntry& entry) {
    file.Line(EntryKind)
        .Text(entry.cdjid)
        .Whole(entry.index)
        .Whole(entry.id)
        .Whole(entry.traits.soundFile)
        .Whole(entry.traits.origin);
}

/// A song that is about to move is known by its new path, and by where it comes from.
SongTraits KeptTraits(const Run& run, std::int32_t id, SongTraits traits) {
    if (const std::string* const path = run.playlistEntries.NewPathOf(id))
        traits.soundFile = SoundFileTrait(*path);
    return traits;
}

void WriteCaptured(SnapshotWriter& file, const Run& run, const TrackIndex& tracks,
                   const PlaylistRange& playlist) {
    WriteList(file, playlist.name, playlist.content);
    for (PlaylistEntries::Position at = playlist.begin; at < playlist.end; ++at) {
        const PlaylistEntry entry = run.playlistEntries.At(at);
        const TrackRow* const track = tracks.FindId(entry.ID);
        WriteEntry(file,
                   {.cdjid = std::string(entry.CDJID),
                    .index = entry.Track,
                    .id = entry.ID,
                    .traits = track == nullptr ? SongTraits()
                                               : KeptTraits(run, entry.ID, TraitsOf(*track))});
    }
}

/// Entries of lists that this run has not read. Their songs may have become others in it.
void WriteKept(SnapshotWriter& file, const Run& run, const TrackIndex* tracks,
               const std::vector<CapturedEntry>& entries) {
    for (CapturedEntry entry : entries) {
        const std::int32_t present = run.playlistEntries.Present(entry.id);
        const TrackRow* const track =
            present == entry.id || tracks == nullptr ? nullptr : tracks->FindId(present);
        if (track != nullptr) {
            entry.id = present;
            entry.traits = TraitsOf(*track);
        }
        entry.traits = KeptTraits(run, entry.id, entry.traits);
        WriteEntry(file, entry);
    }
}

void WriteTakenOver(SnapshotWriter& file, const Run& run, const TrackIndex* tracks,
                    const CapturedPlaylist& playlist) {
    WriteList(file, playlist.name, playlist.content);
    WriteKept(file, run, tracks, playlist.entries);
}

constexpr double SecondsADay = 24 * 60 * 60;

void WritePlaces(SnapshotWriter& file, const Run& run, const TrackIndex* tracks,
                 const CapturedPlaces& places) {
    file.Line(PlacesKind).Whole(std::llround(places.time.days * SecondsADay));
    for (const std::string& name : places.names)
        file.Line(ForKind).Text(name);
    WriteKept(file, run, tracks, places.entries);
}

void Write(Run& run, const TrackIndex* tracks, const SnapshotContent& content) {
    if (content.IsEmpty()) {
        DiscardPlaylistSnapshot(run);
        return;
    }
    SnapshotWriter file(run.files, PathOf(run), Format);
    for (const PlaylistRange& playlist : content.captured)
        WriteCaptured(file, run, *tracks, playlist);
    for (const CapturedPlaylist* const playlist : content.takenOver)
        WriteTakenOver(file, run, tracks, *playlist);
    for (const CapturedPlaces& places : content.places)
        WritePlaces(file, run, tracks, places);
    file.Close();
}

/// Takes the lines of a snapshot; entries belong to the list or the places before them.
class LineReader {
  public:
    void Take(std::string_view kind, SnapshotLine& line) {
        if (kind == ListKind) {
            CapturedPlaylist& playlist = playlists_.emplace_back();
            playlist.name = line.Text();
            playlist.content.size = line.Whole<std::uint64_t>();
            playlist.content.fingerprint = line.Whole<std::uint32_t>();
        } else if (kind == PlacesKind) {
            const auto seconds = static_cast<double>(line.Whole<std::int64_t>());
            places_.emplace_back().time.days = seconds / SecondsADay;
        } else if (kind == ForKind && !places_.empty()) {
            places_.back().names.push_back(line.Text());
        } else if (!places_.empty()) {
            TakeEntry(line, places_.back().entries);
        } else if (!playlists_.empty()) {
            TakeEntry(line, playlists_.back().entries);
        } else {
            line.Damaged();
        }
    }

    PlaylistSnapshot Snapshot() {
        PlaylistSnapshot snapshot;
        for (CapturedPlaylist& playlist : playlists_)
            snapshot.Add(std::move(playlist));
        for (CapturedPlaces& places : places_)
            snapshot.Add(std::move(places));
        return snapshot;
    }

  private:
    static void TakeEntry(SnapshotLine& line, std::vector<CapturedEntry>& entries) {
        CapturedEntry& entry = entries.emplace_back();
        entry.cdjid = line.Text();
        entry.index = line.Whole<std::int32_t>();
        entry.id = line.Whole<std::int32_t>();
        entry.traits.soundFile = line.Whole<std::uint32_t>();
        entry.traits.origin = line.Whole<std::uint32_t>();
    }

    std::vector<CapturedPlaylist> playlists_;
    std::vector<CapturedPlaces> places_;
};

/// Whether one of the entries' rows is the one that was captured; notes in `anyThere` whether any
/// row was to be found.
bool KnowsOne(const TrackIndex& tracks, const std::vector<CapturedEntry>& entries, bool& anyThere) {
    for (const CapturedEntry& entry : entries) {
        const TrackRow* const track = tracks.FindId(entry.id);
        if (track == nullptr) continue;
        if (TraitsOf(*track).Fit(entry.traits)) return true;
        anyThere = true;
    }
    return false;
}

}  // namespace

void PlaylistSnapshot::Add(CapturedPlaylist playlist) {
    const auto [place, isNew] = byName_.try_emplace(LowerCase(playlist.name), playlists_.size());
    if (isNew) playlists_.push_back(std::move(playlist));
}

const CapturedPlaylist* PlaylistSnapshot::Find(std::string_view name) const {
    const auto found = byName_.find(LowerCase(name));
    return found == byName_.end() ? nullptr : &playlists_[found->second];
}

bool CapturedPlaces::AreFor(std::string_view name) const {
    const auto isName = [name](const std::string& own) { return EqualIgnoringCase(own, name); };
    return names.empty() || std::any_of(names.begin(), names.end(), isName);
}

const CapturedPlaces* PlaylistSnapshot::PlacesFor(std::string_view name) const {
    const auto areFor = [name](const CapturedPlaces& places) { return places.AreFor(name); };
    const auto found = std::find_if(places_.begin(), places_.end(), areFor);
    return found == places_.end() ? nullptr : &*found;
}

bool PlaylistSnapshot::IsForeignTo(const TrackIndex& tracks) const {
    bool anyThere = false;
    for (const CapturedPlaylist& playlist : playlists_) {
        if (KnowsOne(tracks, playlist.entries, anyThere)) return false;
    }
    for (const CapturedPlaces& places : places_) {
        if (KnowsOne(tracks, places.entries, anyThere)) return false;
    }
    return anyThere;
}

CapturedPlaces PresentPlaces(const TrackIndex& tracks, DateTime now) {
    CapturedPlaces places;
    places.time = now;
    tracks.ForEachPlace([&places](const TrackRow& track) {
        places.entries.push_back({.cdjid = track.cdjid,
                                  .index = PlaceOf(track) - 1,
                                  .id = IdOf(track),
                                  .traits = TraitsOf(track)});
    });
    return places;
}

std::string PlaylistSnapshotPath(std::string_view database) {
    return std::string(database) + ".playlists";
}

void WritePlaylistSnapshot(Run& run, const TrackIndex& tracks, const SnapshotContent& content) {
    Write(run, &tracks, content);
}

std::optional<PlaylistSnapshot> ReadPlaylistSnapshot(Run& run) {
    if (!run.files.FileExists(PathOf(run))) return std::nullopt;
    LineReader lines;
    const auto visit = [&lines](std::string_view kind, SnapshotLine& line) {
        lines.Take(kind, line);
    };
    if (ReadSnapshot(run.files, PathOf(run), Format, visit)) return lines.Snapshot();
    LogError(run, LogSource,
             "Playlist snapshot is damaged, nothing is taken from it: " + PathOf(run));
    return std::nullopt;
}

void ReducePlaylistSnapshot(Run& run, const std::function<bool(std::string_view name)>& isKept,
                            bool withPlaces) {
    const std::optional<PlaylistSnapshot> snapshot = ReadPlaylistSnapshot(run);
    if (!snapshot) return;
    SnapshotContent content;
    for (const CapturedPlaylist& playlist : snapshot->Playlists()) {
        if (isKept(playlist.name)) content.takenOver.push_back(&playlist);
    }
    if (withPlaces) content.places = snapshot->Places();
    Write(run, nullptr, content);
}

void DiscardPlaylistSnapshot(Run& run) {
    if (run.files.FileExists(PathOf(run))) run.files.DeleteFile(PathOf(run));
}

}  // namespace quillon
