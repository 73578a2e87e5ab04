#include "compat/refresh_spinner.h"

#include <cstdint>
#include <memory>
#include <string>

#include "compat/move_to_id.h"
#include "database/sql.h"
#include "platform/basic_text.h"
#include "platform/database.h"
#include "platform/failure.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class RefreshSpinnerStep { RemoveVanished = 1, MergeRepeated = 2 };

constexpr std::string_view RepeatedSongs =
    "SELECT Spinner.Artist, Spinner.Album, Spinner.Song, Spinner.ID, Spinner.Playcount FROM "
    "Spinner WHERE (((Spinner.Artist) In (SELECT [Artist] FROM [Spinner] As Tmp GROUP BY "
    "[Artist],[Album],[Song] HAVING Count(*)>1  And [Album] = [Spinner].[Album] And [Song] = "
    "[Spinner].[Song]))) ORDER BY Spinner.Artist, Spinner.Album, Spinner.Song";

std::string RowName(const RecordSet& row) {
    return row.Text("Artist") + '\\' + row.Text("Album") + '\\' + row.Text("Song");
}

bool IsInLibrary(Connection& connection, const RecordSet& row) {
    for (const char* field : {"Artist", "Album", "Song"}) {
        if (IsNull(row.Get(field))) return false;
    }
    const std::string artist = row.Text("Artist");
    const std::string file =
        artist + '\\' + row.Text("Album") + '\\' + artist + " - " + row.Text("Song") + ".mp3";
    return !connection.Query("SELECT ID FROM Tracks WHERE SoundFile Like " + Quoted('%' + file))
                ->IsEmpty();
}

void RemoveVanishedSongs(Run& run, Steps& steps) {
    const std::unique_ptr<RecordSet> spinner = run.connection->OpenTable("Spinner");
    for (; !spinner->IsEof(); spinner->MoveNext()) {
        run.ProcessEvents();
        steps.Concerning(RowName(*spinner));
        steps.Try(RefreshSpinnerStep::RemoveVanished, [&] {
            if (!IsInLibrary(*run.connection, *spinner)) spinner->Delete();
        });
    }
}

/// A row of the download table as the merging goes past it.
struct PassedRow {
    std::int64_t id = 0;
    std::string artist, album, song;

    bool IsOfOneSongWith(const PassedRow& other) const {
        return EqualIgnoringCase(artist, other.artist) && EqualIgnoringCase(album, other.album) &&
               EqualIgnoringCase(song, other.song);
    }
};

void StandOn(RecordSet& spinner, std::int64_t id) {
    if (MoveToId(spinner, id)) return;
    throw Failure::Described(FailureNumber::Database,
                             "Download record missing for ID " + std::to_string(id));
}

void Merge(RecordSet& spinner, std::int64_t kept, std::int64_t repeated, std::int64_t playcount) {
    StandOn(spinner, kept);
    spinner.Set("Playcount", spinner.Integer("Playcount") + playcount);
    spinner.Update();
    StandOn(spinner, repeated);
    spinner.Delete();
}

void MergeRepeatedSongs(Run& run, Steps& steps) {
    const std::unique_ptr<RecordSet> spinner = run.connection->OpenTable("Spinner");
    const std::unique_ptr<RecordSet> rows = run.connection->Query(RepeatedSongs);
    PassedRow kept;
    for (; !rows->IsEof(); rows->MoveNext()) {
        run.ProcessEvents();
        PassedRow row{rows->Integer("ID"), rows->Text("Artist"), rows->Text("Album"),
                      rows->Text("Song")};
        if (kept.id == 0 || !row.IsOfOneSongWith(kept)) {
            kept = std::move(row);
            continue;
        }
        steps.Concerning(row.artist + '\\' + row.album + '\\' + row.song);
        const bool merged = steps.Try(RefreshSpinnerStep::MergeRepeated, [&] {
            Merge(*spinner, kept.id, row.id, rows->Integer("Playcount"));
        });
        if (!merged) spinner->CancelUpdate();
    }
}

}  // namespace

void RefreshSpinner(Run& run) {
    Steps steps(run, "Refresh Spinner Error:");
    run.ShowItem("1. Verify Download Tracks are in Database");
    steps.Try(RefreshSpinnerStep::RemoveVanished, [&] { RemoveVanishedSongs(run, steps); });
    run.ShowItem("2. Remove Download Track Duplicates");
    steps.Concerning({});
    steps.Try(RefreshSpinnerStep::MergeRepeated, [&] { MergeRepeatedSongs(run, steps); });
}

}  // namespace quillon
