#include "download/populate_spinner_tracks.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "database/spinner_rows.h"
#include "database/sql.h"
#include "platform/basic_text.h"
#include "platform/clock.h"
#include "platform/database.h"
#include "platform/failure.h"
#include "run/host_settings.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr std::string_view SongFields =
    "Albums.Artist, Albums.Title as Album, Tracks.Title as Song, Tracks.Minutes, Tracks.Seconds";
constexpr std::string_view SongRows = "Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID";

/// How a song is told from others. A name that is missing leaves a comparison with nothing, which
/// is no statement; that is told here, where the song can be named. Such a song must not be added:
/// it would never be found again and come anew in each run.
std::string SongCriterion(const RecordSet& song) {
    std::string criterion;
    bool complete = true;
    for (const char* field : {"Artist", "Album", "Song"}) {
        criterion.append(criterion.empty() ? "" : " AND ").append(field).append("=");
        if (IsNull(song.Get(field))) {
            complete = false;
        } else {
            criterion += Quoted(song.Text(field));
        }
    }
    if (complete) return criterion;
    throw Failure::Described(FailureNumber::Database,
                             "Syntax error (missing operator) in query expression: " + criterion);
}

bool IsInDownloadTable(Connection& connection, const RecordSet& song) {
    return !connection.Query("SELECT * FROM Spinner WHERE " + SongCriterion(song))->IsEmpty();
}

/// "" where a part is missing: the criterion names such a song.
std::string NameOf(const RecordSet& song) {
    for (const char* field : {"Artist", "Album", "Song"}) {
        if (IsNull(song.Get(field))) return "";
    }
    return song.Text("Artist") + '\\' + song.Text("Album") + '\\' + song.Text("Song");
}

/// Seconds; 0 while the length is not known.
std::int64_t LengthOf(const RecordSet& song) {
    const std::int64_t minutes = song.Integer("Minutes");
    if (IsNull(song.Get("Minutes")) || minutes < 0) return 0;
    return minutes * 60 + song.Integer("Seconds");
}

/// The middle of the link that some row of the artist carries. In links of songs that were added
/// with their files that is the genre; in those written here it is the row's number, and an artist
/// keeps that for a genre. Download tables are full of such genres, and programs that read them go
/// by what stands there.
std::string GenreOf(Connection& connection, const RecordSet& song) {
    const std::unique_ptr<RecordSet> known = connection.Query(
        "SELECT FileName FROM  Spinner  WHERE Artist=" + Quoted(song.Text("Artist")));
    if (known->IsEmpty()) return "other";
    const std::vector<std::string> pieces = Split(known->Text("FileName"), "-");
    return pieces.size() >= 3 ? pieces[1] : "other";
}

class DownloadTable {
  public:
    explicit DownloadTable(Run& run)
        : run_(run),
          spinner_(run.connection->OpenTable("Spinner")),
          downloadHost_(DownloadHost(run.host)) {}

    void Add(const RecordSet& song);
    void CancelUpdate() { spinner_->CancelUpdate(); }

  private:
    Run& run_;
    std::unique_ptr<RecordSet> spinner_;
    std::string downloadHost_;
};

void DownloadTable::Add(const RecordSet& song) {
    DownloadSong row{.link = "",
                     .artist = song.Text("Artist"),
                     .album = song.Text("Album"),
                     .song = song.Text("Song"),
                     .length = LengthOf(song),
                     .genre = GenreOf(*run_.connection, song)};
    spinner_->AddNew();
    // The number is there before the row is: so no run that is killed leaves a row without its
    // link.
    const std::string expected = spinner_->Text("ID");
    row.link = StreamLink(downloadHost_, expected);
    FillSpinnerRow(*spinner_, run_.clock.Now(), row);
    spinner_->Update();
    // A database may number its rows only when they are stored.
    if (const std::string number = spinner_->Text("ID"); number != expected) {
        spinner_->Set("FileName", StreamLink(downloadHost_, number));
        spinner_->Update();
    }
    ++run_.counts.songsAdded;
}

}  // namespace

void PopulateSpinnerTracks(Run& run) {
    run.ShowItem("1. Add Album info to Download Table");
    if (run.AbortRequested) return;
    Steps steps(run, "Populate Spininer Tracks Error:");
    steps.Try(1, [&] {
        DownloadTable table(run);
        const std::unique_ptr<RecordSet> songs = run.connection->Query(
            "SELECT " + std::string(SongFields) + " FROM " + std::string(SongRows));
        run.StartCountingRows(SongRows);
        for (; !songs->IsEof(); songs->MoveNext(), run.CountDone()) {
            run.ProcessEvents();
            steps.Concerning(NameOf(*songs));
            bool known = false;
            if (!steps.Try(2, [&] { known = IsInDownloadTable(*run.connection, *songs); }) || known)
                continue;
            // Else the next song's values would join what is left of this one's.
            if (!steps.Try(4, [&] { table.Add(*songs); })) table.CancelUpdate();
        }
    });
}

}  // namespace quillon
