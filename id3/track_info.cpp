#include "id3/track_info.h"

#include <memory>
#include <optional>

#include "database/sql.h"
#include "id3/sound_file_row.h"
#include "platform/database.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

std::string PathOf(std::string_view artist, std::string_view album, std::string_view song) {
    return std::string(artist).append("\\").append(album).append("\\").append(song);
}

}  // namespace

TrackInfo GetID3TrackInfo(Run& run, std::string_view path, std::string_view newPath) {
    TrackInfo info;
    Steps steps(run, "Get ID3 Track Info Error:");
    steps.Concerning(std::string(path));
    steps.Try(1, [&] {
        const std::optional<SoundFileRow> row =
            newPath.empty() ? FindSoundFileRow(*run.connection, path)
                            : FindRowToRename(*run.connection, path, newPath);
        if (!row) return;
        info.track = std::to_string(row->track);
        if (const auto length = row->Length()) info.seconds = std::to_string(*length);
    });
    return info;
}

std::string GetID3Genre(Run& run, std::string_view artist, std::string_view album,
                        std::string_view song) {
    std::string genre;
    Steps steps(run, "Get ID3 Genre Error:");
    steps.Concerning(PathOf(artist, album, song));
    steps.Try(1, [&] {
        const std::unique_ptr<RecordSet> rows = run.connection->Query(
            "SELECT Genre FROM Spinner WHERE ((Artist)=" + Quoted(artist) +
            " AND (Album)=" + Quoted(album) + " AND (Song)=" + Quoted(song) + ")");
        if (!rows->IsEmpty()) genre = rows->Text("Genre");
    });
    return genre;
}

}  // namespace quillon
