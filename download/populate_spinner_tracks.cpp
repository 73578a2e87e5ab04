#include "download/populate_spinner_tracks.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "database/spinner_rows.h"
#include "database/sql.h"
#include "platform/basic_text.h"
#include "platform/clock.h"
#include "platform/failure.h"
#include "run/host_settings.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class TracksStep { WholeLibrary = 1, LookUp = 2, Add = 4 };

/// A track with the names that identify its song.
struct Song {
    const AlbumRow& album;
    const TrackRow& track;

    std::array<std::pair<std::string_view, const RowText&>, 3> Names() const {
        return {{{"Artist", album.artist}, {"Album", album.title}, {"Song", track.title}}};
    }
};

/// Whether all names are there and can be looked up.
bool IsNamed(const Song& song) {
    const auto isFit = [](const auto& field) {
        return !field.second.IsNull() && field.second.Text().find('"') == std::string::npos;
    };
    return std::ranges::all_of(song.Names(), isFit);
}

/// A missing name gives no criterion to search by, which is reported here, where the song can be
/// named. Such a song must not be added: it would never be found again and would be added in each
/// run. Nor must one that no statement could hold.
void RequireNames(const Song& song) {
    bool complete = true;
    for (const auto& [field, name] : song.Names()) {
        RefuseQuote(name);
        complete &= !name.IsNull();
    }
    if (complete) return;
    std::string criterion;
    for (const auto& [field, name] : song.Names()) {
        criterion.append(criterion.empty() ? "" : " AND ").append(field).append("=");
        if (!name.IsNull()) criterion += Quoted(name);
    }
    throw Failure::Described(FailureNumber::Database,
                             "Syntax error (missing operator) in query expression: " + criterion);
}

/// "" where a part is missing: the criterion names such a song.
std::string NameOf(const Song& song) {
    std::string whole;
    for (const auto& [field, name] : song.Names()) {
        if (name.IsNull()) return "";
        whole.append(whole.empty() ? "" : "\\").append(name.Text());
    }
    return whole;
}

/// Seconds; 0 while the length is not known.
std::int64_t LengthOf(const TrackRow& track) {
    const std::int64_t minutes = track.minutes.value_or(-1);
    return minutes < 0 ? 0 : minutes * 60 + track.seconds.value_or(0);
}

/// Adds songs to the download table, artist after artist.
class Additions {
  public:
    explicit Additions(Run& run)
        : run_(run), table_(run.TheDownloadTable()), downloadHost_(DownloadHost(run.host)) {}

    bool HasAlready(const Song& song) const {
        return table_.Find(song.album.artist, song.album.title, song.track.title) != nullptr;
    }

    void Add(const Song& song) {
        const SongId expected = table_.NextId();
        // The number is there before the row is: so no run that is killed leaves a row without its
        // link.
        SongRow& row =
            table_.Add(FieldsOf(run_.clock.Now(), {.link = LinkOf(expected),
                                                   .artist = song.album.artist,
                                                   .album = song.album.title,
                                                   .song = song.track.title,
                                                   .length = LengthOf(song.track),
                                                   .genre = GenreOf(song.album.artist)}));
        // A database may number its rows only when they are stored.
        if (row.id != expected) table_.SetLink(row, LinkOf(row.id));
        ++run_.counts.songsAdded;
    }

  private:
    std::string LinkOf(SongId id) const {
        return StreamLink(downloadHost_, std::to_string(static_cast<std::int64_t>(id)));
    }

    /// The middle of the link that the artist's first row carries. In links of songs that were
    /// added with their files that is the genre; in those written here it is the row's number, and
    /// an artist keeps that for a genre. Download tables are full of such genres, and programs that
    /// read them go by what stands there.
    const std::string& GenreOf(const std::string& artist) {
        const SongRow* const known = table_.FirstOf(artist);
        if (known == nullptr) {
            genreOf_ = nullptr;
            genre_ = Other;
        } else if (known != genreOf_) {
            const std::vector<std::string> pieces =
                Split(RowText(table_.Read(*known, "FileName")).Text(), "-");
            genreOf_ = known;
            genre_ = pieces.size() >= 3 ? pieces[1] : Other;
        }
        return genre_;
    }

    static constexpr std::string_view Other = "other";

    Run& run_;
    DownloadTable& table_;
    std::string downloadHost_;
    const SongRow* genreOf_ = nullptr;  ///< the row that the genre at hand was taken from
    std::string genre_;
};

}  // namespace

void PopulateSpinnerTracks(Run& run) {
    run.ShowItem("1. Add Album info to Download Table");
    if (run.AbortRequested) return;
    Steps steps(run, "Populate Spininer Tracks Error:");
    steps.Try(TracksStep::WholeLibrary, [&] {
        Library& library = run.TheLibrary();
        Additions additions(run);
        run.StartCounting(library.Tracks().size());
        for (const AlbumRow& album : library.Albums()) {
            if (album.isGone || album.cdjid.IsNull()) continue;
            for (const TrackRow* const track : library.TracksOf(album.cdjid)) {
                const Song song{album, *track};
                run.ProcessEvents();
                run.CountDone();
                if (IsNamed(song) && additions.HasAlready(song)) continue;
                steps.Concerning(NameOf(song));
                if (steps.Try(TracksStep::LookUp, [&] { RequireNames(song); }))
                    steps.Try(TracksStep::Add, [&] { additions.Add(song); });
            }
        }
    });
}

}  // namespace quillon
