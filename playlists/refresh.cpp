#include "playlists/refresh.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/basic_text.h"
#include "platform/failure.h"
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

/// The header and 5000 entries. A longer list ends the step: what to do with it is for a person to
/// say, and cutting it would lose entries.
constexpr std::size_t MostLines = 5001;

/// One playlist's lines on their way through the checks.
class Refreshing {
  public:
    Refreshing(Run& run, const TrackIndex& tracks, const FileEntry& file)
        : run_(run), tracks_(tracks), file_(file) {}

    void Read() {
        const std::unique_ptr<TextReader> text = run_.files.OpenText(file_.path);
        // The header is nobody's business, whatever it says.
        if (!text->AtEndOfStream()) Keep(text->ReadLine());
        while (!text->AtEndOfStream()) {
            const std::string line = text->ReadLine();
            if (std::optional<std::string> kept = Checked(line)) {
                Keep(std::move(*kept));
            } else {
                changed_ = true;
            }
        }
    }

    /// Puts the kept lines into the file's place if they differ from what it holds.
    void Store() {
        if (!changed_) return;
        if (lines_.size() < 2) {
            Log(" delete because no valid entries remain");
            run_.files.DeleteFile(file_.path);
            ++run_.counts.playlistsRemoved;
            return;
        }
        const std::unique_ptr<TextWriter> writer = run_.files.CreateText(file_.path);
        for (const std::string& line : lines_)
            writer->WriteLine(line);
        writer->Close();
        ++run_.counts.playlistsRepaired;
    }

  private:
    void Keep(std::string line) {
        if (lines_.size() == MostLines) {
            throw Failure(FailureNumber::SubscriptOutOfRange,
                          "playlist " + file_.name + " has more than 5000 entries");
        }
        lines_.push_back(std::move(line));
    }

    /// The line as it is to stand in the file; nothing when it is dropped.
    std::optional<std::string> Checked(const std::string& line) {
        const std::string_view trimmed = Trim(line);
        if (trimmed.empty()) return std::nullopt;
        const std::optional<PlaFields> fields = FirstTwoFields(trimmed);
        if (!fields) return Dropped(line, "of incorrect syntax");
        if (!tracks_.HasAlbum(fields->cdjid)) return Dropped(line, "CDJID no longer exists");
        if (fields->index == WholeAlbumIndex) return line;

        const std::optional<std::int32_t> index = WholeIndex(fields->index);
        const auto position =
            index ? run_.playlistEntries.FindPlace(fields->cdjid, *index, file_.name)
                  : std::nullopt;
        if (!position) {
            Log(" record could not be retrieved from temp database for CDJID " +
                std::string(fields->cdjid) + ", Track " + std::string(fields->index));
            return std::nullopt;
        }
        const PlaylistEntry entry = run_.playlistEntries.At(*position);
        if (entry.Processed == 1) {
            Log(" contains duplicate track " + std::string(fields->index) + " on " +
                std::string(fields->cdjid) + " and was removed");
            return std::nullopt;
        }
        run_.playlistEntries.SetProcessed(*position);
        const IndexedTrack* const track = tracks_.FindId(entry.ID);
        if (track == nullptr) return Dropped(line, "Track ID no longer exists");
        return Followed(line, *fields, *index, *track);
    }

    /// The line at its song's present position.
    std::optional<std::string> Followed(const std::string& line, const PlaFields& fields,
                                        std::int32_t index, const IndexedTrack& track) {
        if (track.number < 1) {
            // Its line would read as the whole album, or as nothing at all.
            Log(", " + line + " kept as it is because the track has no number");
            return line;
        }
        // The line keeps its album: a list belongs to the albums it was made from. A song that has
        // gone to another one cannot be named that way, so it is at least told.
        if (!EqualIgnoringCase(fields.cdjid, tracks_.Cdjid(track))) {
            Log(", " + line + " names a song that is now on album " +
                std::string(tracks_.Cdjid(track)));
        }
        std::string present = PlaLine(fields.cdjid, track.number);
        if (track.number - 1 != index) {
            changed_ = true;
            Log(", Track # updated from " + std::string(fields.index) + " to " + present);
        }
        return present;
    }

    std::nullopt_t Dropped(const std::string& line, std::string_view reason) {
        Log(", " + line + " removed because " + std::string(reason));
        return std::nullopt;
    }

    void Log(const std::string& what) {
        WriteLog(run_, LogSource, "Playlist " + file_.name + what);
    }

    Run& run_;
    const TrackIndex& tracks_;
    const FileEntry& file_;
    std::vector<std::string> lines_;
    bool changed_ = false;
};

void Refresh(Run& run, const TrackIndex& tracks, const FileEntry& file) {
    run.ShowItem("1. Update Existing Playlists - " + file.name);
    if (run.playlistEntries.IsUnread(file.name)) return;
    Refreshing playlist(run, tracks, file);
    playlist.Read();
    playlist.Store();
}

}  // namespace

void RefreshPlaylist(Run& run) {
    Steps steps(run, "Refresh Playlist Error:");
    steps.Try(0, [&run] {
        run.ShowItem("1. Update Existing Playlists");
        const TrackIndex tracks(*run.connection);
        if (tracks.IsEmpty() || !PlaylistFolderExists(run)) return;
        for (const FileEntry& file : Counted(run, PlaylistFiles(run)))
            Refresh(run, tracks, file);
        DiscardPlaylistSnapshot(run);
    });
}

}  // namespace quillon
