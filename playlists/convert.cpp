#include "playlists/convert.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "database/sql.h"
#include "platform/basic_text.h"
#include "platform/database.h"
#include "platform/files.h"
#include "playlists/m3u.h"
#include "playlists/pla_line.h"
#include "playlists/playlist_folder.h"
#include "run/counted.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

/// The tracks that an entry stands for, by their numbers in the database.
std::vector<std::string> TracksOf(Run& run, const PlaFields& fields) {
    if (fields.index != WholeAlbumIndex)
        return {std::to_string(std::int64_t{ToLong(fields.index)} + 1)};
    std::vector<std::string> tracks;
    const std::unique_ptr<RecordSet> rows =
        run.connection->Query("SELECT Track FROM Tracks WHERE cdjid=" + FilterQuoted(fields.cdjid));
    for (; !rows->IsEof(); rows->MoveNext()) {
        std::string track = rows->Text("Track");
        if (IsNumeric(track)) tracks.push_back(std::move(track));
    }
    return tracks;
}

void WriteEntry(Run& run, Steps& steps, TextWriter& output, const PlaFields& fields) {
    std::vector<std::string> tracks;
    steps.Try(5, [&] { tracks = TracksOf(run, fields); });
    for (const std::string& track : tracks)
        WriteM3uTrack(run, output, fields.cdjid, track);
}

}  // namespace

void aPlaToM3u_Click(Run& run) {
    Steps steps(run, "aPlaToM3u_Click");
    std::vector<FileEntry> files;
    steps.Try(1, [&] { files = PlaylistFiles(run); });
    for (const FileEntry& file : Counted(run, files)) {
        run.ProcessEvents();
        if (run.AbortRequested) return;
        PlaToM3u(run, file);
    }
}

void PlaToM3u(Run& run, const FileEntry& file) {
    run.ShowItem("1. Playlist " + file.name);
    Steps steps(run, "PlaToM3u");
    steps.Try(2, [&] {
        const std::unique_ptr<TextReader> input = run.files.OpenText(file.path);
        if (!input->AtEndOfStream()) input->ReadLine();
        if (input->AtEndOfStream()) return;
        const std::string target = run.settings.PlayListPath2 + M3uName(file.name);
        if (EqualIgnoringCase(target, file.path)) {
            WriteLog(run, LogSource, "PlaToM3u: " + file.path + " would be replaced by itself");
            return;
        }
        const std::unique_ptr<TextWriter> output = run.files.CreateText(target);
        output->WriteLine(M3uHeader);
        while (!input->AtEndOfStream()) {
            const std::string line = input->ReadLine();
            const auto fields = ExactlyTwoFields(line);
            if (fields) WriteEntry(run, steps, *output, *fields);
        }
        output->Close();
        ++run.counts.playlistsWritten;
    });
}

void M3uToPla(Run& run) {
    Steps(run, "M3uToPla").Try(0, [] {});
}

}  // namespace quillon
