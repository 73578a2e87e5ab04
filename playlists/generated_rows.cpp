#include "playlists/generated_rows.h"

#include <array>
#include <map>
#include <utility>

#include "platform/basic_text.h"
#include "playlists/pla_line.h"
#include "playlists/playlist_folder.h"
#include "run/run.h"

namespace quillon {
namespace {

/// Folders as rows name them, each looked at once.
class RowFolders {
  public:
    explicit RowFolders(Run& run) : run_(run) {}

    std::string Usual(const std::string& folder) {
        const auto [place, isNew] = usual_.try_emplace(folder, folder);
        if (isNew && IsSameFolder(run_.files, folder, run_.settings.PlayListPath))
            place->second = run_.settings.PlayListPath;
        return place->second;
    }

  private:
    Run& run_;
    std::map<std::string, std::string> usual_;
};

}  // namespace

void GeneratedRows::Add(const Run& run, GeneratedRow row) {
    if (row.folder == run.settings.PlayListPath) names_.insert(LowerCase(row.name));
    rows_.push_back(std::move(row));
}

bool GeneratedRows::HaveName(std::string_view name) const {
    return names_.contains(LowerCase(name));
}

GeneratedRows ReadGeneratedRows(Run& run) {
    GeneratedRows generated;
    RowFolders folders(run);
    for (const PlaylistRow& known : run.ThePlaylistTable().Rows()) {
        GeneratedRow row{.folder = known.folder,
                         .name = known.name.Text() + known.type.Text(),
                         .byGenre = known.byGenre,
                         .byArtist = known.byArtist};
        const bool isMadeAnew = (row.byGenre && run.settings.GenrePlaylist) ||
                                (row.byArtist && run.settings.ArtistPlaylist);
        if (!isMadeAnew || !HasPlaylistName(row.name)) continue;
        row.folder = folders.Usual(row.folder);
        generated.Add(run, std::move(row));
    }
    return generated;
}

void RecordPlaylist(Run& run, const std::string& name, GeneratedBy family) {
    PlaylistTable& table = run.ThePlaylistTable();
    const bool isGenre = family == GeneratedBy::Genre;
    if (PlaylistRow* const row = table.Find(run.settings.PlayListPath, name)) {
        const bool isMarked = isGenre ? row->byGenre : row->byArtist;
        if (!isMarked) table.Change(*row, {isGenre ? "AutoGenre" : "AutoArtist", true});
        return;
    }
    table.Add(std::array<FieldValue, 8>{{{"FilePath", run.settings.PlayListPath},
                                         {"Filename", name},
                                         {"AutoGenre", isGenre},
                                         {"AutoArtist", !isGenre},
                                         {"Type", std::string(PlaExtension)},
                                         {"DeviceCode", std::string()},
                                         {"Browser", false},
                                         {"Device", false}}});
}

}  // namespace quillon
