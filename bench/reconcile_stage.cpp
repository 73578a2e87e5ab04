#include "bench/reconcile_stage.h"

#include <fstream>
#include <utility>
#include <vector>

namespace quillon::bench {
namespace fs = std::filesystem;

ReconcileStage::ReconcileStage(std::string program, std::size_t tracks, FileNames names)
    : program_(std::move(program)) {
    MakeLibrary(Music(), tracks, names);
    fs::create_directories(Data());
    std::ofstream(folder_.Path() / "host.ini") << "[Plugins]\nQuillon=1\n[Drives]\nD=disk\n";
    std::ofstream(folder_.Path() / "Quillon.ini")
        << "[NPFrame]\nLibraryRoot=D:\\Music\nNirvis_CDJ_DB=D:\\Data\\jukebox.mdb\n"
           "Reconcile=1\nArtistPlaylist=0\nGenrePlaylist=0\nID3Reconcile="
        << (names == FileNames::ByArtist ? "1\n" : "0\n");
    RunToSuccess({program_, "db", "create", (Data() / "jukebox.mdb").string()});
}

Usage ReconcileStage::Reconcile(const std::string& view, const Surroundings& surroundings) const {
    const Usage used = RunToSuccess(
        {program_, "run", "--host", folder_.Path().string(), "--view", view}, surroundings);
    // Backups of earlier runs would fill the disk.
    std::vector<fs::path> backups;
    for (const fs::directory_entry& entry : fs::directory_iterator(Data())) {
        if (entry.path().extension() != ".mdb") backups.push_back(entry.path());
    }
    for (const fs::path& backup : backups)
        fs::remove(backup);
    return used;
}

}  // namespace quillon::bench
