#include "playlists/artist_entries.h"

#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "database/sql.h"
#include "platform/basic_text.h"
#include "platform/database.h"
#include "playlists/pla_line.h"
#include "run/counted.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

/// An artist of the download table, with the first genre met for it.
struct GenreArtist {
    std::string artist, genre;
};

bool IsVarious(std::string_view artist) {
    constexpr std::string_view Various = "Various";
    return EqualIgnoringCase(artist.substr(0, Various.size()), Various);
}

std::vector<GenreArtist> DownloadArtists(Connection& connection) {
    std::vector<GenreArtist> artists;
    const std::unique_ptr<RecordSet> rows = connection.Query(
        "SELECT Spinner.Artist, First(Spinner.Genre)AS FirstGenre FROM Spinner "
        "GROUP BY Spinner.Artist HAVING (((First(Spinner.Genre)) Is Not Null))");
    for (; !rows->IsEof(); rows->MoveNext())
        artists.push_back({rows->Text("Artist"), rows->Text("FirstGenre")});
    return artists;
}

class EntryReader {
  public:
    EntryReader(Run& run, ArtistEntries kind) : run_(run), kind_(kind) {}

    void Read(const GenreArtist& artist) {
        if (kind_ == ArtistEntries::Tracks || IsVarious(artist.artist)) {
            ReadTracks(artist);
        } else {
            ReadAlbums(artist);
        }
    }

    void TellLeftOut() const {
        Tell(unnumbered_, "without a number");
        Tell(homeless_, "without an album's identifier (CDJID)");
    }

  private:
    /// Tracks that no list can name.
    struct LeftOut {
        std::size_t count = 0;
        std::string first;

        void Add(const RecordSet& track) {
            if (count++ == 0) first = track.Text("Artist") + " - " + track.Text("Title");
        }
    };

    void Tell(const LeftOut& tracks, std::string_view what) const {
        if (tracks.count == 0) return;
        std::string line = "Tracks " + std::string(what) +
                           ", left out of the new playlists: " + std::to_string(tracks.count);
        line += (tracks.count == 1 ? " (" : " (the first is ") + tracks.first + ')';
        WriteLog(run_, LogSource, line);
    }

    void ReadTracks(const GenreArtist& artist) {
        const std::unique_ptr<RecordSet> tracks =
            run_.connection->Query("SELECT CDJID, Artist, Track, Title FROM Tracks WHERE Artist=" +
                                   FilterQuoted(artist.artist));
        // The first track's answer counts for all: an artist is wanted or not, and people who mark
        // some songs of one rely on that.
        if (tracks->IsEof() || IsExcluded(tracks->Text("Title"), artist.artist)) return;
        for (; !tracks->IsEof(); tracks->MoveNext()) {
            const auto number = static_cast<std::int32_t>(tracks->Integer("Track"));
            if (number < 1) {
                unnumbered_.Add(*tracks);
            } else if (tracks->Text("CDJID").empty()) {
                homeless_.Add(*tracks);
            } else {
                Add(*tracks, artist, number);
            }
        }
    }

    void ReadAlbums(const GenreArtist& artist) {
        const std::unique_ptr<RecordSet> albums = run_.connection->Query(
            "SELECT CDJID, Artist FROM Albums WHERE Artist=" + FilterQuoted(artist.artist));
        for (; !albums->IsEof(); albums->MoveNext())
            Add(*albums, artist, WholeAlbum);
    }

    bool IsExcluded(const std::string& title, const std::string& artist) {
        const std::unique_ptr<RecordSet> rows = run_.connection->Query(
            "SELECT Spinner.Exclude FROM Tracks "
            " INNER JOIN Spinner ON (Tracks.Title = Spinner.Song) AND "
            "(Tracks.Artist = Spinner.Artist)"
            " WHERE (((Tracks.Title)=" +
            FilterQuoted(title) + ") AND ((Tracks.Artist)=" + FilterQuoted(artist) + "))");
        return !rows->IsEof() && rows->Integer("Exclude") != 0;
    }

    void Add(const RecordSet& row, const GenreArtist& artist, std::int32_t track) {
        const std::string cdjid = row.Text("CDJID"), rowArtist = row.Text("Artist");
        run_.playlistEntries.Add({.Track = track,
                                  .Artist = rowArtist,
                                  .CDJID = cdjid,
                                  .Genre = artist.genre,
                                  .Random = SortKey()});
    }

    std::int32_t SortKey() {
        constexpr double Keys = 100000;
        if (!run_.settings.RandomizePlaylist) return 0;
        return static_cast<std::int32_t>(std::nearbyint(run_.random.Next() * Keys));
    }

    Run& run_;
    ArtistEntries kind_;
    LeftOut unnumbered_, homeless_;
};

}  // namespace

bool ReadArtistEntries(Run& run, Steps& steps, ArtistEntries kind) {
    EntryReader reader(run, kind);
    bool areAllRead = true;
    for (const GenreArtist& artist : Counted(run, DownloadArtists(*run.connection))) {
        run.ShowItem("1. Read Playlist Track / Album Info - " + artist.artist);
        steps.Concerning(artist.artist);
        areAllRead &= steps.Try(0, [&] { reader.Read(artist); });
    }
    steps.Concerning({});
    reader.TellLeftOut();
    return areAllRead;
}

}  // namespace quillon
