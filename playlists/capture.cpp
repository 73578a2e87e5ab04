#include "playlists/capture.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "database/snapshot_file.h"
#include "platform/database.h"
#include "platform/files.h"
#include "playlists/pla_line.h"
#include "playlists/playlist_folder.h"
#include "playlists/playlist_snapshot.h"
#include "playlists/track_index.h"
#include "run/counted.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

bool IsTrue(const Value& value) {
    const bool* const answer = std::get_if<bool>(&value);
    return answer != nullptr && *answer;
}

/// The rows stay: creation finds them again.
void DeleteGenerated(Run& run, Steps& steps) {
    const std::unique_ptr<RecordSet> rows = run.connection->Query(
        "SELECT * FROM Playlists WHERE AutoGenre = True Or AutoArtist = True");
    for (; !rows->IsEof(); rows->MoveNext()) {
        const bool isMadeAnew = (IsTrue(rows->Get("AutoArtist")) && run.settings.ArtistPlaylist) ||
                                (IsTrue(rows->Get("AutoGenre")) && run.settings.GenrePlaylist);
        if (!isMadeAnew) continue;
        const std::string path =
            rows->Text("FilePath") + rows->Text("Filename") + rows->Text("Type");
        // One that cannot be deleted must not keep the others from being captured.
        steps.Try(2, [&] {
            if (run.files.FileExists(path)) run.files.DeleteFile(path);
        });
    }
}

/// Reads playlists into the working set.
class Capture {
  public:
    Capture(Run& run, const TrackIndex& tracks, std::optional<PlaylistSnapshot> interrupted)
        : run_(run), tracks_(tracks), interrupted_(std::move(interrupted)) {}

    void Read(const FileEntry& file) {
        run_.ShowItem("1. Capture Existing Playlists - " + file.name);
        std::vector<CapturedEntry> entries;
        const PlaylistContent content = ReadEntries(file, entries);
        const CapturedPlaylist* const known =
            interrupted_ ? interrupted_->Find(file.name, content) : nullptr;
        const bool isKnown = known != nullptr && Fits(*known);
        if (isKnown && known->entries != entries) ++fromSnapshot_;

        const auto begin = static_cast<PlaylistEntries::Position>(run_.playlistEntries.Count());
        for (const CapturedEntry& entry : isKnown ? known->entries : entries)
            Add(file.name, entry);
        const auto end = static_cast<PlaylistEntries::Position>(run_.playlistEntries.Count());
        playlists_.push_back({file.name, content, begin, end});
    }

    const std::vector<PlaylistRange>& Playlists() const { return playlists_; }

    /// How many playlists mean something else than their lines say at present, because an
    /// interrupted run had captured them before the library changed.
    std::size_t FromSnapshot() const { return fromSnapshot_; }

  private:
    PlaylistContent ReadEntries(const FileEntry& file, std::vector<CapturedEntry>& entries) const {
        PlaylistContent content{.size = file.size, .fingerprint = Fingerprint("")};
        const std::unique_ptr<TextReader> text = run_.files.OpenText(file.path);
        for (bool isHeader = true; !text->AtEndOfStream(); isHeader = false) {
            const std::string line = text->ReadLine();
            content.fingerprint = Fingerprint(line, Fingerprint("\n", content.fingerprint));
            if (isHeader) continue;
            if (std::optional<CapturedEntry> entry = Resolved(line))
                entries.push_back(std::move(*entry));
        }
        return content;
    }

    /// What a line means at present; nothing for a whole album and for what means nothing.
    std::optional<CapturedEntry> Resolved(std::string_view line) const {
        const std::optional<PlaFields> fields = FirstTwoFields(line);
        if (!fields || fields->index == WholeAlbumIndex) return std::nullopt;
        const std::optional<std::int32_t> index = WholeIndex(fields->index);
        if (!index || *index == std::numeric_limits<std::int32_t>::max()) return std::nullopt;
        const IndexedTrack* const track = tracks_.FindPlace(fields->cdjid, *index + 1);
        if (track == nullptr) return std::nullopt;
        return CapturedEntry{.cdjid = std::string(fields->cdjid),
                             .index = *index,
                             .id = track->id,
                             .soundFile = track->soundFile};
    }

    /// Whether the rows are those that were captured, as far as they are still there; the database
    /// may have been replaced since.
    bool Fits(const CapturedPlaylist& playlist) const {
        return std::all_of(playlist.entries.begin(), playlist.entries.end(),
                           [this](const CapturedEntry& entry) {
                               const IndexedTrack* const track = tracks_.FindId(entry.id);
                               return track == nullptr || track->soundFile == entry.soundFile;
                           });
    }

    void Add(const std::string& playlist, const CapturedEntry& entry) {
        if (run_.playlistEntries.FindSong(entry.id, playlist)) return;
        run_.playlistEntries.Add(
            {.ID = entry.id, .Track = entry.index, .CDJID = entry.cdjid, .Playlist = playlist});
    }

    Run& run_;
    const TrackIndex& tracks_;
    const std::optional<PlaylistSnapshot> interrupted_;
    std::vector<PlaylistRange> playlists_;
    std::size_t fromSnapshot_ = 0;
};

void CaptureExisting(Run& run, Steps& steps) {
    const TrackIndex tracks(*run.connection);
    if (tracks.IsEmpty() || !PlaylistFolderExists(run)) return;
    std::optional<PlaylistSnapshot> interrupted;
    steps.Try(4, [&] { interrupted = ReadPlaylistSnapshot(run); });
    Capture capture(run, tracks, std::move(interrupted));
    for (const FileEntry& file : Counted(run, PlaylistFiles(run))) {
        // One that cannot be read must not cost the others their songs.
        if (!steps.Try(5, [&] { capture.Read(file); })) run.playlistEntries.NoteUnread(file.name);
    }
    if (capture.FromSnapshot() > 0) {
        WriteLog(run, LogSource,
                 "An earlier run was interrupted; playlists taken as it had captured them: " +
                     std::to_string(capture.FromSnapshot()));
    }
    // The run is worth as much without it, as long as nobody interrupts it.
    steps.Try(6, [&] { WritePlaylistSnapshot(run, tracks, capture.Playlists()); });
    run.playlistEntries.OnKeep([&run, playlists = capture.Playlists()] {
        WritePlaylistSnapshot(run, TrackIndex(*run.connection), playlists);
    });
}

}  // namespace

void CapturePlaylists(Run& run) {
    Steps steps(run, "Capture Playlists Error:");
    run.ShowItem("1. Delete Previously AutoGenerated Playlists");
    steps.Try(1, [&] { DeleteGenerated(run, steps); });
    run.ShowItem("2. Capture Existing Playlists");
    if (run.AbortRequested) return;
    // What follows takes the working set for complete: a playlist of which it knows nothing would
    // lose every entry.
    if (!steps.Try(3, [&] { CaptureExisting(run, steps); })) run.playlistEntries.NoteNothingRead();
}

}  // namespace quillon
