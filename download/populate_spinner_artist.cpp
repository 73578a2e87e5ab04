#include "download/populate_spinner_artist.h"

#include <cstdint>
#include <memory>
#include <string>

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

void AddArtist(RecordSet& spinnerArtist, const std::string& artist) {
    spinnerArtist.AddNew();
    spinnerArtist.Set("Artist", artist);
    spinnerArtist.Set("ArtistID", std::int64_t{0});
    spinnerArtist.Set("ShortBio", std::string());
    spinnerArtist.Set("LongBio", std::string());
    spinnerArtist.Update();
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
                if (!IsDownloadArtist(*run.connection, artist)) AddArtist(*spinnerArtist, artist);
            });
            if (!done) spinnerArtist->CancelUpdate();
        }
    });
}

}  // namespace quillon
