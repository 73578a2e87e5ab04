#include "playlists/playlist_rows.h"

#include <array>

#include "playlists/pla_line.h"
#include "run/run.h"

namespace quillon {

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
