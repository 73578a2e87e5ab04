#include "playlists/artist_entries.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <numeric>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/basic_text.h"
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

/// The artists of whom the first row has a genre, in the database's order.
std::vector<GenreArtist> DownloadArtists(DownloadTable& table) {
    std::vector<GenreArtist> artists;
    bool isNamelessKnown = false;
    for (const SongRow& song : table.Songs()) {
        // Songs without an artist stand together for one whose name is empty.
        const bool isFirst = song.artist.IsNull() ? !std::exchange(isNamelessKnown, true)
                                                  : table.FirstOf(song.artist) == &song;
        if (isFirst && !song.genre.IsNull()) artists.push_back({song.artist, song.genre});
    }
    std::ranges::sort(artists, [&table](const GenreArtist& one, const GenreArtist& other) {
        return table.Rules().ComesBefore(one.artist, other.artist);
    });
    return artists;
}

/// Rows by their artist, in the file's order.
template <typename Row>
class ByArtist {
  public:
    ByArtist(std::deque<Row>& rows, const TextRules& rules) : rows_(rows), rules_(rules) {
        std::uint32_t hash = 0;
        const Row* last = nullptr;
        for (const RowIndex::Row place : FromLastToFirst(rows)) {
            const Row& row = rows[place];
            // Rows of one artist mostly follow each other.
            if (last == nullptr || last->artist.Text() != row.artist.Text())
                hash = rules.Hash(row.artist);
            index_.Add(hash, place);
            last = &row;
        }
    }

    template <typename Visit>
    void ForEach(std::string_view artist, Visit visit) const {
        index_.ForEach(rules_.Hash(artist), [&](RowIndex::Row place) {
            const Row& row = rows_[place];
            if (!IsGone(row) && !row.artist.IsNull() && rules_.AreEqual(row.artist, artist))
                visit(row);
        });
    }

  private:
    /// By their places in the file: rows that this run has added may fill gaps before others, and
    /// the next run, which reads them from there, must come to the same lists.
    static std::vector<RowIndex::Row> FromLastToFirst(const std::deque<Row>& rows) {
        std::vector<RowIndex::Row> places(rows.size());
        std::iota(places.rbegin(), places.rend(), RowIndex::Row{0});
        const auto liesBehind = [&rows](RowIndex::Row one, RowIndex::Row other) {
            return rows[other].key < rows[one].key;
        };
        if (!std::ranges::is_sorted(places, liesBehind)) std::ranges::sort(places, liesBehind);
        return places;
    }
    static bool IsGone(const SongRow&) { return false; }
    static bool IsGone(const auto& row) { return row.isGone || row.isWaiting; }

    std::deque<Row>& rows_;
    const TextRules& rules_;
    RowIndex index_;
};

class EntryReader {
  public:
    EntryReader(Run& run, ArtistEntries kind)
        : run_(run),
          kind_(kind),
          tracks_(run.TheLibrary().Tracks(), run.TheLibrary().Rules()),
          albums_(run.TheLibrary().Albums(), run.TheLibrary().Rules()),
          songs_(run.TheDownloadTable().Songs(), run.TheDownloadTable().Rules()) {}

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

        void Add(const TrackRow& track) {
            if (count++ == 0) first = track.artist.Text() + " - " + track.title.Text();
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
        bool isFirst = true, isWanted = true;
        const auto read = [&](const TrackRow& track) {
            // The first track's answer counts for all: an artist is wanted or not, and people who
            // mark some songs of one rely on that.
            if (isFirst) isWanted = !IsExcluded(track.title, artist.artist);
            isFirst = false;
            if (!isWanted) return;
            const std::int32_t number = track.number.Truth().value_or(0);
            if (number < 1) {
                unnumbered_.Add(track);
            } else if (track.cdjid.IsEmpty()) {
                homeless_.Add(track);
            } else {
                Add(track, artist, number);
            }
        };
        tracks_.ForEach(artist.artist, read);
        if (run_.modern.keepsTrackArtists) ReadGuests(artist.artist, read);
    }

    /// Tracks on the artist's albums that are by others, of whom the download table knows nothing:
    /// they go with the albums they are on.
    template <typename Visit>
    void ReadGuests(const std::string& artist, const Visit& visit) {
        albums_.ForEach(artist, [&](const AlbumRow& album) {
            if (album.cdjid.IsEmpty()) return;
            for (const TrackRow* const track : run_.TheLibrary().TracksOf(album.cdjid)) {
                const bool isThere = !track->isGone && !track->isWaiting && !track->artist.IsNull();
                if (!isThere || run_.TheLibrary().Rules().AreEqual(track->artist, artist)) continue;
                const SongRow* const own = run_.TheDownloadTable().FirstOf(track->artist);
                if (own == nullptr || own->genre.IsNull()) visit(*track);
            }
        });
    }

    void ReadAlbums(const GenreArtist& artist) {
        albums_.ForEach(artist.artist,
                        [&](const AlbumRow& album) { Add(album, artist, WholeAlbum); });
    }

    /// Whether the first song of the download table with these names is.
    bool IsExcluded(const RowText& title, const std::string& artist) const {
        bool isFirst = true, isExcluded = false;
        songs_.ForEach(artist, [&](const SongRow& song) {
            const bool isIt = !title.IsNull() && !song.song.IsNull() &&
                              run_.TheLibrary().Rules().AreEqual(song.song, title);
            if (isIt && isFirst) isExcluded = song.isExcluded;
            if (isIt) isFirst = false;
        });
        return isExcluded;
    }

    void Add(const auto& row, const GenreArtist& artist, std::int32_t track) {
        run_.playlistEntries.Add({.Track = track,
                                  .Artist = row.artist,
                                  .CDJID = row.cdjid,
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
    ByArtist<TrackRow> tracks_;
    ByArtist<AlbumRow> albums_;
    ByArtist<SongRow> songs_;
    LeftOut unnumbered_, homeless_;
};

}  // namespace

bool ReadArtistEntries(Run& run, Steps& steps, ArtistEntries kind) {
    EntryReader reader(run, kind);
    bool areAllRead = true;
    for (const GenreArtist& artist : Counted(run, DownloadArtists(run.TheDownloadTable()))) {
        run.ShowItem("1. Read Playlist Track / Album Info - " + artist.artist);
        steps.Concerning(artist.artist);
        areAllRead &= steps.Try([&] { reader.Read(artist); });
    }
    steps.Concerning({});
    reader.TellLeftOut();
    return areAllRead;
}

}  // namespace quillon
