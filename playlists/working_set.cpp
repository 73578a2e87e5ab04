#include "playlists/working_set.h"

#include <string>

#include "run/log.h"
#include "run/playlist_entries.h"
#include "run/run.h"

namespace quillon {

void BuildORsRecordset(Run& run) {
    run.playlistEntries = PlaylistEntries();
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
