#include "playlists/create.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/basic_text.h"
#include "platform/database.h"
#include "playlists/artist_entries.h"
#include "playlists/playlist_writer.h"
#include "run/counted.h"
#include "run/playlist_entries.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

/// Which artists have tracks enough. All are counted at once: a count of one artist is a pass over
/// all tracks.
class Threshold {
  public:
    explicit Threshold(Run& run) : least_(run.settings.ArtistThreshold) {
        const std::unique_ptr<RecordSet> rows = run.connection->Query(
            "SELECT Count(Tracks.ID) AS CountOfID, Tracks.Artist FROM Tracks "
            "GROUP BY Tracks.Artist");
        for (; !rows->IsEof(); rows->MoveNext())
            counts_[LowerCase(rows->Text("Artist"))] += rows->Integer("CountOfID");
    }

    /// An artist without tracks is none to ask for, however low the threshold.
    bool IsReachedBy(std::string_view artist) const {
        const auto found = counts_.find(LowerCase(artist));
        return found != counts_.end() && found->second >= least_;
    }

  private:
    std::int64_t least_;
    std::unordered_map<std::string, std::int64_t> counts_;  ///< by artist in lower case
};

void CreateGenrePlaylists(Run& run) {
    PlaylistWriter writer(run, GeneratedBy::Genre);
    std::string_view genre;
    for (const PlaylistEntries::Position at : Counted(run, run.playlistEntries.ByGenre())) {
        const PlaylistEntry entry = run.playlistEntries.At(at);
        if (entry.Genre != genre) {
            genre = entry.Genre;
            writer.Begin(genre);
        }
        writer.WriteTrack(entry.CDJID, entry.Track);
    }
    writer.End();
}

void CreateArtistPlaylistsByTrack(Run& run) {
    const Threshold threshold(run);
    PlaylistWriter writer(run, GeneratedBy::Artist);
    std::string_view artist;
    bool isWanted = false;
    for (const PlaylistEntries::Position at : Counted(run, run.playlistEntries.ByArtist())) {
        const PlaylistEntry entry = run.playlistEntries.At(at);
        if (entry.Artist != artist) {
            artist = entry.Artist;
            run.ShowItem("3. Create Artist Playlist - " + std::string(artist));
            isWanted = threshold.IsReachedBy(artist);
            if (isWanted) writer.Begin(artist);
        }
        if (isWanted) writer.WriteTrack(entry.CDJID, entry.Track);
    }
    writer.End();
}

void CreateArtistPlaylistsByAlbum(Run& run) {
    const Threshold threshold(run);
    PlaylistWriter writer(run, GeneratedBy::Artist);
    const std::unique_ptr<RecordSet> albums = run.connection->OpenTable("Albums");
    albums->Filter("Artist <> '' AND CDJID <> ''");
    run.StartCountingRows("Albums WHERE Artist <> '' AND CDJID <> ''");
    albums->Sort("Artist");
    std::string artist;
    bool isWanted = false;
    for (; !albums->IsEof(); albums->MoveNext()) {
        const std::string albumArtist = albums->Text("Artist");
        if (!EqualIgnoringCase(albumArtist, artist)) {
            artist = albumArtist;
            run.ShowItem("3. Create Artist Playlist - " + artist);
            isWanted = threshold.IsReachedBy(artist);
            if (isWanted) writer.Begin(artist);
        }
        if (isWanted) writer.WriteAlbum(albums->Text("CDJID"));
        run.CountDone();
    }
    writer.End();
}

}  // namespace

void CreateNewPlaylists(Run& run) {
    Steps steps(run, "Generate New Playlists Error:");
    steps.Try(0, [&run] {
        run.ShowItem("1. Read Playlist Track / Album Info");
        if (!run.AbortRequested) ReadArtistEntries(run, ArtistEntries::Tracks);
        if (run.settings.GenrePlaylist && !run.AbortRequested) {
            run.ShowItem("2. New Genre Playlists");
            CreateGenrePlaylists(run);
        }
        // An abort does not keep this part from its work: it was asked for before that.
        if (!run.settings.ArtistPlaylist) return;
        run.ShowItem("3. New Artists Playlists");
        if (run.settings.PlaylistByAlbumOption) {
            CreateArtistPlaylistsByAlbum(run);
        } else {
            CreateArtistPlaylistsByTrack(run);
        }
    });
}

}  // namespace quillon
