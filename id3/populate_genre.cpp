#include "id3/populate_genre.h"

#include <string>
#include <string_view>

#include "id3/genre_in_file_name.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr std::string_view UnknownGenre = "other";

/// A song's names with nothing between, as the dictionary knows it.
std::string JoinedNames(const SongRow& row) {
    return row.artist.Text() + row.album.Text() + row.song.Text();
}

/// The genre that the link of a row without one names; it is stored there.
std::string DeriveGenre(DownloadTable& table, SongRow& row, Steps& steps) {
    std::string genre = GenreInFileName(RowText(table.Read(row, "FileName")));
    if (genre.empty()) genre = UnknownGenre;
    steps.Concerning(JoinedNames(row));
    steps.Try(2, [&] { table.SetGenre(row, genre); });
    steps.Concerning({});
    return genre;
}

}  // namespace

void PopulateGenre(Run& run) {
    Steps steps(run, "PopulateGenre:");
    steps.Try(0, [&] {
        // Only the comparison of tags asks the dictionary, and it may hold a million songs.
        const bool isAskedFor = run.settings.ID3Reconcile;
        DownloadTable& table = run.TheDownloadTable();
        for (SongRow& row : table.Songs()) {
            if (!row.genre.IsNull() && !isAskedFor) continue;
            const std::string genre =
                row.genre.IsNull() ? DeriveGenre(table, row, steps) : row.genre.Text();
            if (isAskedFor) run.GenreDictionary.try_emplace(JoinedNames(row), genre);
        }
    });
}

}  // namespace quillon
