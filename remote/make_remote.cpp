#include "remote/make_remote.h"

#include <array>
#include <memory>
#include <string>

#include "platform/database.h"
#include "run/counted.h"
#include "run/paths.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class RemoteStep { AlbumCovers = 1, Tracks = 2, PlaPlaylists = 3, M3uPlaylists = 4 };

/// Rows whose paths get the drive of a folder that the settings name.
struct StoredPaths {
    RemoteStep step;
    std::string_view item;
    std::string Settings::* folder;
    std::string_view rows;  ///< behind FROM
    std::string_view field;
};

constexpr std::array AllStoredPaths{
    StoredPaths{RemoteStep::AlbumCovers, "1. Album Covers", &Settings::AlbumCoverFolder,
                "Albums WHERE Albums.ImageFile is Not Null and "
                "Albums.ImageFile<>\"\"",
                "ImageFile"},
    StoredPaths{RemoteStep::Tracks, "2. MP3 Tracks", &Settings::LibraryRoot,
                "Tracks WHERE Tracks.SoundFile is Not Null and "
                "Tracks.SoundFile<>\"\"",
                "SoundFile"},
    StoredPaths{RemoteStep::PlaPlaylists, "3. Pla Playlists", &Settings::PlayListPath,
                "Playlists WHERE Playlists.Type =\"pla\" AND "
                "Playlists.FilePath is Not Null and Playlists.FilePath<>\"\"",
                "FilePath"},
    StoredPaths{RemoteStep::M3uPlaylists, "4. M3u Playlists", &Settings::PlayListPath2,
                "Playlists WHERE Playlists.Type =\"m3u\" AND "
                "Playlists.FilePath is Not Null and Playlists.FilePath<>\"\"",
                "FilePath"},
};

void ChangeDrives(Run& run, Steps& steps, const StoredPaths& paths, const std::string& drive) {
    steps.Concerning(std::string(paths.item));
    const std::unique_ptr<RecordSet> rows = run.connection->OpenUpdatable(
        "SELECT " + std::string(paths.field) + " FROM " + std::string(paths.rows));
    run.StartCountingRows(paths.rows);
    for (; !rows->IsEof(); rows->MoveNext()) {
        run.ProcessEvents();
        const std::string path = rows->Text(paths.field);
        steps.Concerning(path);
        const std::string changed = ChangeDrive(drive, path);
        rows->Set(paths.field, changed);
        rows->Update();
        if (changed != path) ++run.counts.rowsRepointed;
        run.CountDone();
    }
}

}  // namespace

void MakeRemote(Run& run) {
    Steps steps(run, "MakeRemote");
    SharesBySize shares(run, AllStoredPaths.size());
    for (const StoredPaths& paths : AllStoredPaths) {
        const Share share = shares.Next(1);
        run.ShowItem(paths.item);
        if (run.AbortRequested) return;
        const std::string drive = GetDrive(run.settings.*paths.folder);
        if (drive.empty()) continue;
        if (!steps.Try(paths.step, [&] { ChangeDrives(run, steps, paths, drive); })) return;
    }
}

}  // namespace quillon
