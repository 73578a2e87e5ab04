#include "id3/populate_genre.h"

#include <memory>
#include <string>
#include <string_view>

#include "id3/genre_in_file_name.h"
#include "platform/database.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr std::string_view UnknownGenre = "other";

}  // namespace

void PopulateGenre(Run& run) {
    Steps steps(run, "PopulateGenre:");
    steps.Try(0, [&] {
        const std::unique_ptr<RecordSet> rows = run.connection->OpenTable("Spinner");
        for (; !rows->IsEof(); rows->MoveNext()) {
            std::string song = rows->Text("Artist") + rows->Text("Album") + rows->Text("Song");
            std::string genre;
            if (IsNull(rows->Get("Genre"))) {
                genre = GenreInFileName(rows->Text("FileName"));
                if (genre.empty()) genre = UnknownGenre;
                steps.Concerning(song);
                const bool stored = steps.Try(2, [&] {
                    rows->Set("Genre", genre);
                    rows->Update();
                });
                if (!stored) rows->CancelUpdate();
                steps.Concerning({});
            } else {
                genre = rows->Text("Genre");
            }
            run.GenreDictionary.try_emplace(std::move(song), std::move(genre));
        }
    });
}

}  // namespace quillon
