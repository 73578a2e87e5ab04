#include "tests/support/real_library.h"

#include <algorithm>
#include <fstream>

#include "database/remove_duplicates.h"
#include "jukebox/jukebox_database.h"
#include "reconcile/refresh_database.h"
#include "tests/outside/file_marks.h"
#include "tests/support/database_rows.h"
#include "tests/support/open_database.h"
#include "tests/support/sound_file.h"

namespace quillon::support {
namespace {

namespace fs = std::filesystem;

DriveTable Drives(const fs::path& folder) {
    DriveTable drives(folder);
    drives.Map("D", folder);
    return drives;
}

}  // namespace

RealLibrary::RealLibrary()
    : resolver_(Drives(folder_.Path())),
      files_(resolver_,
             [this](LogKind, const std::string& message) { host.WriteLog("Quillon", message); }),
      run(host, files_, clock, window) {
    fs::create_directory(Music());
    fs::create_directory(DatabaseFile().parent_path());
    CreateJukeboxDatabase(DatabaseFile());
    run.settings.Nirvis_CDJ_DB = R"(D:\data\jukebox.mdb)";
    run.settings.LibraryRoot = R"(D:\Music)";
    run.LibraryFolders.push_back({run.settings.LibraryRoot, "Music"});
    OpenDatabase();
}

fs::path RealLibrary::Music(const std::string& path) const {
    std::string local = path;
    std::replace(local.begin(), local.end(), '\\', '/');
    return path.empty() ? folder_.Path() / "Music" : folder_.Path() / "Music" / local;
}

void RealLibrary::AddFile(const std::string& path, const std::string& bytes, int minutes) {
    const fs::path file = Music(path);
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
    constexpr std::int64_t FixedTime = 1'600'000'000;
    outside::SetModified(file, FixedTime + std::int64_t{60} * minutes);
}

void RealLibrary::AddFile(const std::string& path, int minutes) {
    AddFile(path, UntaggedSoundFile(), minutes);
}

void RealLibrary::OpenDatabase() {
    run.ForgetTables();
    auto connection = std::make_unique<FaultyConnection>(support::OpenDatabase(DatabaseFile()));
    database_ = connection.get();
    run.connection = std::move(connection);
}

void RealLibrary::Reconcile() {
    run.ForgetTables();
    RemoveDuplicates(run);
    RefreshDatabase(run);
}

std::vector<std::string> RealLibrary::Rows(std::string_view sql) {
    return support::Rows(*run.connection, sql);
}

std::vector<std::string> RealLibrary::State() {
    std::vector<std::string> state =
        Rows("SELECT Artist, Title, Tracks FROM Albums ORDER BY Artist, Title, ID");
    for (std::string& row :
         Rows("SELECT SoundFile, Title, Track FROM Tracks ORDER BY SoundFile, ID"))
        state.push_back(std::move(row));
    return state;
}

void RealLibrary::Files::MoveFile(std::string_view from, std::string_view to) {
    beforeChange();
    PortableFiles::MoveFile(from, to);
}

void RealLibrary::Files::DeleteFile(std::string_view path) {
    beforeChange();
    PortableFiles::DeleteFile(path);
}

std::unique_ptr<TextWriter> RealLibrary::Files::CreateText(std::string_view path) {
    beforeChange();
    return PortableFiles::CreateText(path);
}

std::unique_ptr<BinaryReader> RealLibrary::Files::OpenBinary(std::string_view path) {
    if (path.ends_with(".mp3")) ++opened;
    beforeReading(path);
    return PortableFiles::OpenBinary(path);
}

std::string RealLibrary::Faults() {
    CloseDatabase();
    return StructuralFaults(DatabaseFile());
}

}  // namespace quillon::support
