#include "download/populate_spinner_artist.h"

#include <memory>
#include <string>

#include "database/spinner_rows.h"
#include "database/sql.h"
#include "platform/database.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

bool IsDownloadArtist(Connection& connection, const std::string& artist) {
    return !connection.Query("SELECT Artist FROM SpinnerArtist WHERE Artist =" + Quoted(artist))
                ->IsEmpty();
}

}  // namespace

void PopulateSpinnerArtist(Run& run) {
    run.ShowItem("1. Add Artists to Download Table");
    Steps steps(run, "Populate Spinner Artist Error:");
    steps.Try(1, [&] {
        const std::unique_ptr<RecordSet> spinnerArtist = run.connection->OpenTable("SpinnerArtist");
        const std::unique_ptr<RecordSet> artists =
            run.connection->Query("SELECT Albums.Artist FROM Albums GROUP BY Albums.Artist");
        for (; !artists->IsEof(); artists->MoveNext()) {
            run.ProcessEvents();
            // No look-up finds a Null again, so each run would add one more.
            if (IsNull(artists->Get("Artist"))) continue;
            const bool done = steps.Try(2, [&] {
                const std::string artist = artists->Text("Artist");
                if (!IsDownloadArtist(*run.connection, artist))
                    AddSpinnerArtistRow(*spinnerArtist, artist);
            });
            if (!done) spinnerArtist->CancelUpdate();
        }
    });
}

}  // namespace quillon
