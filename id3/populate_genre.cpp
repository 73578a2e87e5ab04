#include "id3/populate_genre.h"

#include <string>
#include <string_view>

#include "id3/genre_in_file_name.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr std::string_view UnknownGenre = "other";

}  // namespace

void PopulateGenre(Run& run) {
    Steps steps(run, "PopulateGenre:");
    steps.Try(0, [&] {
        DownloadTable& table = run.TheDownloadTable();
        for (SongRow& row : table.Songs()) {
            std::string song = row.artist.Text() + row.album.Text() + row.song.Text();
            std::string genre = row.genre;
            if (row.genre.IsNull()) {
                genre = GenreInFileName(RowText(table.Read(row, "FileName")));
                if (genre.empty()) genre = UnknownGenre;
                steps.Concerning(song);
                steps.Try(2, [&] { table.SetGenre(row, genre); });
                steps.Concerning({});
            }
            run.GenreDictionary.try_emplace(std::move(song), std::move(genre));
        }
    });
}

}  // namespace quillon
