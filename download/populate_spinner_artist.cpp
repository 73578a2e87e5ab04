#include "download/populate_spinner_artist.h"

#include <memory>
#include <string>
#include <vector>

#include "database/spinner_rows.h"
#include "database/sql.h"
#include "platform/database.h"
#include "run/counted.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

bool IsDownloadArtist(Connection& connection, const std::string& artist) {
    return !connection.Query("SELECT Artist FROM SpinnerArtist WHERE Artist =" + Quoted(artist))
                ->IsEmpty();
}

std::vector<std::string> AlbumArtists(Connection& connection) {
    std::vector<std::string> artists;
    const std::unique_ptr<RecordSet> rows =
        connection.Query("SELECT Albums.Artist FROM Albums GROUP BY Albums.Artist");
    for (; !rows->IsEof(); rows->MoveNext()) {
        // No look-up finds a Null again, so each run would add one more.
        if (!IsNull(rows->Get("Artist"))) artists.push_back(rows->Text("Artist"));
    }
    return artists;
}

}  // namespace

void PopulateSpinnerArtist(Run& run) {
    run.ShowItem("1. Add Artists to Download Table");
    Steps steps(run, "Populate Spinner Artist Error:");
    steps.Try(1, [&] {
        const std::unique_ptr<RecordSet> spinnerArtist = run.connection->OpenTable("SpinnerArtist");
        for (const std::string& artist : Counted(run, AlbumArtists(*run.connection))) {
            run.ProcessEvents();
            steps.Concerning(artist);
            const bool done = steps.Try(2, [&] {
                if (IsDownloadArtist(*run.connection, artist)) return;
                AddSpinnerArtistRow(*spinnerArtist, artist);
                ++run.counts.artistsAdded;
            });
            if (!done) spinnerArtist->CancelUpdate();
        }
    });
}

}  // namespace quillon
