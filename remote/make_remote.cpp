#include "remote/make_remote.h"

#include <array>
#include <memory>
#include <string>

#include "platform/database.h"
#include "run/paths.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

struct PathStep {
    std::string_view item;
    std::string Settings::* folder;
    std::string_view rows;  ///< behind FROM
    std::string_view field;
};

constexpr std::array PathSteps{
    PathStep{"1. Album Covers", &Settings::AlbumCoverFolder,
             "Albums WHERE Albums.ImageFile is Not Null and "
             "Albums.ImageFile<>\"\"",
             "ImageFile"},
    PathStep{"2. MP3 Tracks", &Settings::LibraryRoot,
             "Tracks WHERE Tracks.SoundFile is Not Null and "
             "Tracks.SoundFile<>\"\"",
             "SoundFile"},
    PathStep{"3. Pla Playlists", &Settings::PlayListPath,
             "Playlists WHERE Playlists.Type =\"pla\" AND "
             "Playlists.FilePath is Not Null and Playlists.FilePath<>\"\"",
             "FilePath"},
    PathStep{"4. M3u Playlists", &Settings::PlayListPath2,
             "Playlists WHERE Playlists.Type =\"m3u\" AND "
             "Playlists.FilePath is Not Null and Playlists.FilePath<>\"\"",
             "FilePath"},
};

void ChangeDrives(Run& run, Steps& steps, const PathStep& step, const std::string& drive) {
    steps.Concerning(std::string(step.item));
    const std::unique_ptr<RecordSet> rows = run.connection->OpenUpdatable(
        "SELECT " + std::string(step.field) + " FROM " + std::string(step.rows));
    run.StartCountingRows(step.rows);
    for (; !rows->IsEof(); rows->MoveNext()) {
        run.ProcessEvents();
        const std::string path = rows->Text(step.field);
        steps.Concerning(path);
        const std::string changed = ChangeDrive(drive, path);
        rows->Set(step.field, changed);
        rows->Update();
        if (changed != path) ++run.counts.rowsRepointed;
        run.CountDone();
    }
}

}  // namespace

void MakeRemote(Run& run) {
    Steps steps(run, "MakeRemote");
    int number = 0;
    for (const PathStep& step : PathSteps) {
        run.ShowItem(step.item);
        if (run.AbortRequested) return;
        const std::string drive = GetDrive(run.settings.*step.folder);
        ++number;
        if (drive.empty()) continue;
        if (!steps.Try(number, [&] { ChangeDrives(run, steps, step, drive); })) return;
    }
}

}  // namespace quillon
