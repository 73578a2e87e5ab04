#include "id3/track_info.h"

#include "id3/sound_file_row.h"
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
        Library& library = run.TheLibrary();
        const TrackRow* const row =
            newPath.empty() ? library.FindTrack(path) : FindRowToRename(library, path, newPath);
        if (row == nullptr) return;
        info.track = std::to_string(row->number.Truth().value_or(0));
        if (const auto length = LengthOf(*row)) info.seconds = std::to_string(*length);
    });
    return info;
}

std::string GetID3Genre(Run& run, std::string_view artist, std::string_view album,
                        std::string_view song) {
    std::string genre;
    Steps steps(run, "Get ID3 Genre Error:");
    steps.Concerning(PathOf(artist, album, song));
    steps.Try(1, [&] {
        if (const SongRow* const row = run.TheDownloadTable().Find(artist, album, song))
            genre = row->genre;
    });
    return genre;
}

}  // namespace quillon
