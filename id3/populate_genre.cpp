#include "id3/populate_genre.h"

#include <memory>
#include <string>
#include <string_view>

#include "platform/database.h"
#include "run/paths.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

/// The text between the first two dashes of a stream file's name: "Rock" of ".../000-Rock-000.rm".
std::string GenreInFileName(std::string_view fileName) {
    const std::string name = GetBaseName(fileName);
    const std::size_t first = name.find('-');
    const std::size_t second = first == std::string::npos ? first : name.find('-', first + 1);
    if (second == std::string::npos || second == first + 1) return "other";
    return name.substr(first + 1, second - first - 1);
}

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
