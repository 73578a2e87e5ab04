#include "id3/song_genre.h"

#include "run/paths.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class GenreStep { StoreDerived = 2 };

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
    steps.Try(GenreStep::StoreDerived, [&] { table.SetGenre(row, genre); });
    steps.Concerning({});
    return genre;
}

}  // namespace

std::string GenreInFileName(std::string_view fileName) {
    const std::string name = GetBaseName(fileName);
    const std::size_t first = name.find('-');
    if (first == std::string::npos) return "";
    const std::size_t second = name.find('-', first + 1);
    if (second == std::string::npos) return "";
    return name.substr(first + 1, second - first - 1);
}

void PopulateGenre(Run& run) {
    Steps steps(run, "PopulateGenre:");
    steps.Try([&] {
        // Only the comparison of tags asks the dictionary, and it may hold a million songs.
        const bool isAskedFor = run.settings.ID3Reconcile;
        DownloadTable& table = run.TheDownloadTable();
        for (SongRow& row : table.Songs()) {
            if (!row.genre.IsNull() && !isAskedFor) continue;
            const bool isDerived = row.genre.IsNull();
            const std::string derived = isDerived ? DeriveGenre(table, row, steps) : "";
            if (isAskedFor) run.GenreDictionary.Add(row, isDerived ? derived : row.genre.Text());
        }
    });
}

}  // namespace quillon
