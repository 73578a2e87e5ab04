#include "compat/lookups.h"

#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class LookupStep { Find = 1 };

std::string PathOf(std::string_view artist, std::string_view album, std::string_view song) {
    return std::string(artist).append("\\").append(album).append("\\").append(song);
}

}  // namespace

std::string GetID3Genre(Run& run, std::string_view artist, std::string_view album,
                        std::string_view song) {
    std::string genre;
    Steps steps(run, "Get ID3 Genre Error:");
    steps.Concerning(PathOf(artist, album, song));
    steps.Try(LookupStep::Find, [&] {
        if (const SongRow* const row = run.TheDownloadTable().Find(artist, album, song))
            genre = row->genre;
    });
    return genre;
}

void showORs(Run& run, std::string_view caption) {
    for (PlaylistEntries::Position at = 0; at < run.playlistEntries.Count(); ++at) {
        const PlaylistEntry entry = run.playlistEntries.At(at);
        std::string line = "ORs ";
        line += caption;
        const auto add = [&line](std::string_view value) {
            line += ',';
            line += value;
        };
        add(std::to_string(entry.ID));
        add(std::to_string(entry.Track));
        add(entry.Artist);
        add(entry.CDJID);
        add(entry.Genre);
        add(entry.Playlist);
        add(std::to_string(entry.Processed));
        add(std::to_string(entry.Random));
        WriteLog(run, LogSource, line);
    }
}

}  // namespace quillon
