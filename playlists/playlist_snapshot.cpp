#include "playlists/playlist_snapshot.h"

#include <array>
#include <utility>

#include "database/snapshot_file.h"
#include "platform/basic_text.h"
#include "playlists/track_index.h"
#include "run/log.h"
#include "run/run.h"

namespace quillon {
namespace {

constexpr std::string_view ListKind = "List", EntryKind = "Entry";
constexpr std::array Kinds{ListKind, EntryKind};
constexpr SnapshotFormat Format{.title = "Quillon playlist snapshot 1", .kinds = Kinds};

std::string PathOf(const Run& run) {
    return PlaylistSnapshotPath(run.settings.Nirvis_CDJ_DB);
}

std::uint32_t SoundFileOf(const TrackIndex& tracks, std::int32_t id) {
    const IndexedTrack* const track = tracks.FindId(id);
    return track == nullptr ? 0 : track->soundFile;
}

}  // namespace

void PlaylistSnapshot::Add(std::string_view name, CapturedPlaylist playlist) {
    playlists_.insert_or_assign(LowerCase(name), std::move(playlist));
}

const CapturedPlaylist* PlaylistSnapshot::Find(std::string_view name,
                                               const PlaylistContent& content) const {
    const auto found = playlists_.find(LowerCase(name));
    if (found == playlists_.end() || found->second.content != content) return nullptr;
    return &found->second;
}

std::string PlaylistSnapshotPath(std::string_view database) {
    return std::string(database) + ".playlists";
}

void WritePlaylistSnapshot(Run& run, const TrackIndex& tracks,
                           const std::vector<PlaylistRange>& playlists) {
    if (playlists.empty()) {
        DiscardPlaylistSnapshot(run);
        return;
    }
    SnapshotWriter file(run.files, PathOf(run), Format);
    for (const PlaylistRange& playlist : playlists) {
        file.Line(ListKind)
            .Text(playlist.name)
            .Whole(static_cast<std::int64_t>(playlist.content.size))
            .Whole(playlist.content.fingerprint);
        for (PlaylistEntries::Position at = playlist.begin; at < playlist.end; ++at) {
            const PlaylistEntry entry = run.playlistEntries.At(at);
            file.Line(EntryKind)
                .Text(entry.CDJID)
                .Whole(entry.Track)
                .Whole(entry.ID)
                .Whole(SoundFileOf(tracks, entry.ID));
        }
    }
    file.Close();
}

std::optional<PlaylistSnapshot> ReadPlaylistSnapshot(Run& run) {
    if (!run.files.FileExists(PathOf(run))) return std::nullopt;
    std::vector<std::pair<std::string, CapturedPlaylist>> playlists;
    const auto visit = [&playlists](std::string_view kind, SnapshotLine& line) {
        if (kind == ListKind) {
            const std::string name = line.Text();
            const PlaylistContent content{.size = line.Whole<std::uint64_t>(),
                                          .fingerprint = line.Whole<std::uint32_t>()};
            playlists.emplace_back(name, CapturedPlaylist{.content = content, .entries = {}});
        } else if (playlists.empty()) {
            line.Damaged();
        } else {
            playlists.back().second.entries.push_back({.cdjid = line.Text(),
                                                       .index = line.Whole<std::int32_t>(),
                                                       .id = line.Whole<std::int32_t>(),
                                                       .soundFile = line.Whole<std::uint32_t>()});
        }
    };
    if (!ReadSnapshot(run.files, PathOf(run), Format, visit)) {
        LogError(run, LogSource,
                 "Playlist snapshot is damaged, nothing is taken from it: " + PathOf(run));
        return std::nullopt;
    }
    PlaylistSnapshot snapshot;
    for (auto& [name, playlist] : playlists)
        snapshot.Add(name, std::move(playlist));
    return snapshot;
}

void DiscardPlaylistSnapshot(Run& run) {
    if (run.files.FileExists(PathOf(run))) run.files.DeleteFile(PathOf(run));
}

}  // namespace quillon
