#include "id3/track_info.h"

#include <cstdint>
#include <memory>

#include "database/sql.h"
#include "platform/database.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

std::string PathOf(std::string_view artist, std::string_view album, std::string_view song) {
    return std::string(artist).append("\\").append(album).append("\\").append(song);
}

}  // namespace

std::string GetID3TrackInfo(Run& run, std::string_view artist, std::string_view album,
                            std::string_view song) {
    constexpr std::int64_t SecondsAMinute = 60;
    std::string seconds, track;
    Steps steps(run, "Get ID3 Track Info Error:");
    steps.Concerning(PathOf(artist, album, song));
    steps.Try(1, [&] {
        const std::unique_ptr<RecordSet> rows = run.connection->Query(
            "SELECT Tracks.Track, Tracks.Minutes, Tracks.Seconds FROM Albums INNER JOIN Tracks ON "
            "Albums.CDJID = Tracks.CDJID WHERE (((Albums.Artist)=" +
            Quoted(artist) + ") AND ((Albums.Title)=" + Quoted(album) +
            ") AND ((Tracks.Title)=" + Quoted(song) + "))");
        if (rows->IsEmpty()) return;
        track = rows->Text("Track");
        const std::int64_t minutes = rows->Integer("Minutes"), rest = rows->Integer("Seconds");
        if (minutes > 0 || rest > 0) seconds = std::to_string(minutes * SecondsAMinute + rest);
    });
    return seconds + "|" + track;
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
