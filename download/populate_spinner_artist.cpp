#include "download/populate_spinner_artist.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_set>
#include <vector>

#include "database/spinner_rows.h"
#include "database/sql.h"
#include "platform/database.h"
#include "run/counted.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class ArtistsStep { WholeLibrary = 1, Add = 2 };

constexpr std::string_view Table = "SpinnerArtist";

/// Artists as the database tells them apart.
class ArtistNames {
  public:
    explicit ArtistNames(const Connection& connection) : connection_(connection) {}

    /// Whether it was not there yet.
    bool Add(std::string_view artist) { return names_.insert(connection_.FoldText(artist)).second; }

  private:
    const Connection& connection_;
    std::unordered_set<std::string> names_;
};

ArtistNames DownloadArtists(Connection& connection) {
    ArtistNames names(connection);
    constexpr std::array<std::string_view, 1> Fields{"Artist"};
    connection.Scan(Table, Fields, [&names](RowKey, std::span<const Value> row) {
        if (!IsNull(row[0])) names.Add(RowText(row[0]));
    });
    return names;
}

/// Each one once, in the database's order. No look-up finds a Null again, so that each run would
/// add one more.
std::vector<std::string> AlbumArtists(Run& run) {
    std::vector<std::string> artists;
    ArtistNames names(*run.connection);
    for (const AlbumRow& album : run.TheLibrary().Albums()) {
        if (!album.isGone && !album.artist.IsNull() && names.Add(album.artist))
            artists.push_back(album.artist);
    }
    std::ranges::sort(artists, [&run](const std::string& one, const std::string& other) {
        return run.connection->CompareTexts(one, other) < 0;
    });
    return artists;
}

}  // namespace

void PopulateSpinnerArtist(Run& run) {
    run.ShowItem("1. Add Artists to Download Table");
    Steps steps(run, "Populate Spinner Artist Error:");
    steps.Try(ArtistsStep::WholeLibrary, [&] {
        ArtistNames known = DownloadArtists(*run.connection);
        for (const std::string& artist : Counted(run, AlbumArtists(run))) {
            run.ProcessEvents();
            steps.Concerning(artist);
            steps.Try(ArtistsStep::Add, [&] {
                RefuseQuote(artist);
                if (!known.Add(artist)) return;
                run.connection->Insert(Table, FieldsOfSpinnerArtist(artist));
                ++run.counts.artistsAdded;
            });
        }
    });
}

}  // namespace quillon
