#include "playlists/playlist_rows.h"

#include <utility>

#include "database/sql.h"
#include "playlists/pla_line.h"
#include "run/run.h"

namespace quillon {

void PlaylistRows::Record(const std::string& name, GeneratedBy family) {
    // A cursor that has failed may hold refused values, so it is kept only when all went well.
    std::unique_ptr<RecordSet> rows = std::move(rows_);
    if (!rows) rows = run_.connection->OpenTable("Playlists");
    Write(*rows, name, family);
    rows_ = std::move(rows);
}

void PlaylistRows::Write(RecordSet& rows, const std::string& name, GeneratedBy family) const {
    const bool isGenre = family == GeneratedBy::Genre;
    const std::string_view mark = isGenre ? "AutoGenre" : "AutoArtist";
    rows.Filter("Filepath = " + FilterQuoted(run_.settings.PlayListPath) +
                " AND Filename=" + FilterQuoted(name));
    if (!rows.IsEmpty()) {
        if (rows.Get(mark) == Value(true)) return;
        rows.Set(mark, true);
        rows.Update();
        return;
    }
    rows.AddNew();
    rows.Set("FilePath", run_.settings.PlayListPath);
    rows.Set("Filename", name);
    rows.Set("AutoGenre", isGenre);
    rows.Set("AutoArtist", !isGenre);
    rows.Set("Type", std::string(PlaExtension));
    rows.Set("DeviceCode", "");
    rows.Set("Browser", false);
    rows.Set("Device", false);
    rows.Update();
}

}  // namespace quillon
