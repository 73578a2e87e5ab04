#include "tests/support/test_library.h"

#include <utility>

#include "database/remove_duplicates.h"
#include "database/sql.h"
#include "jukebox/jukebox_database.h"
#include "reconcile/refresh_database.h"
#include "tests/support/database_rows.h"
#include "tests/support/open_database.h"

namespace quillon::support {
namespace {

DateTime MinutesOld(int minutes) {
    constexpr double MinutesADay = 24 * 60;
    return {MakeDateTime(2020, 1, 1).days + minutes / MinutesADay};
}

}  // namespace

TestLibrary::TestLibrary() {
    CreateJukeboxDatabase(DatabaseFile());
    run.settings.Nirvis_CDJ_DB = R"(D:\Data\jukebox.mdb)";
    run.settings.LibraryRoot = R"(D:\Music)";
    run.LibraryFolders.push_back({run.settings.LibraryRoot, "Music"});
    files.AddFolder(run.settings.LibraryRoot);
    ReopenDatabase();
}

void TestLibrary::ReopenDatabase() {
    run.ForgetTables();
    run.connection.reset();
    auto connection = std::make_unique<FaultyConnection>(OpenDatabase(DatabaseFile()));
    database_ = connection.get();
    run.connection = std::move(connection);
}

void TestLibrary::AddFile(const std::string& path, int minutes) {
    files.AddFile(Root + path, UntaggedSoundFile(), MinutesOld(minutes));
}

void TestLibrary::AddFile(const std::string& path, const RawTag& tag, int minutes) {
    files.AddFile(Root + path, SoundFile(tag), MinutesOld(minutes));
}

void TestLibrary::Reconcile() {
    run.ForgetTables();
    RemoveDuplicates(run);
    RefreshDatabase(run);
}

std::vector<std::string> TestLibrary::Rows(std::string_view sql) {
    return support::Rows(*run.connection, sql);
}

void TestLibrary::AddAlbumRow(std::string_view cdjid, std::string_view artist,
                              std::string_view title, int tracks, int player) {
    Execute("INSERT INTO Albums (CDJID, Artist, Title, Tracks, Player) VALUES (" +
            FilterQuoted(cdjid) + ", " + FilterQuoted(artist) + ", " + FilterQuoted(title) + ", " +
            std::to_string(tracks) + ", " + std::to_string(player) + ")");
}

void TestLibrary::AddTrackRow(std::string_view cdjid, int number, std::string_view soundFile,
                              std::string_view title) {
    Execute("INSERT INTO Tracks (CDJID, Track, SoundFile, Title) VALUES (" + FilterQuoted(cdjid) +
            ", " + std::to_string(number) + ", " + FilterQuoted(soundFile) + ", " +
            FilterQuoted(title) + ")");
}

std::vector<std::string> TestLibrary::Albums() {
    return Rows("SELECT Artist, Title, Tracks FROM Albums ORDER BY Artist, Title, ID");
}

std::vector<std::string> TestLibrary::Tracks() {
    std::vector<std::string> rows =
        Rows("SELECT SoundFile, Title, Track FROM Tracks ORDER BY SoundFile, ID");
    for (std::string& row : rows) {
        if (row.starts_with(Root)) row.erase(0, std::string_view(Root).size());
    }
    return rows;
}

std::string TestLibrary::DatabaseBytes() {
    run.ForgetTables();
    run.connection.reset();
    std::string bytes = outside::ContentOf(DatabaseFile());
    ReopenDatabase();
    return bytes;
}

std::string TestLibrary::Faults() {
    run.ForgetTables();
    run.connection.reset();
    return StructuralFaults(DatabaseFile());
}

Listing<FolderEntry> TestLibrary::Files::SubFolders(std::string_view folder) {
    RefuseUnlistable(folder);
    return FakeFiles::SubFolders(folder);
}

Listing<FileEntry> TestLibrary::Files::FilesIn(std::string_view folder) {
    RefuseUnlistable(folder);
    Listing<FileEntry> listing = FakeFiles::FilesIn(folder);
    if (afterListing) std::exchange(afterListing, {})();
    return listing;
}

void TestLibrary::Files::RefuseUnlistable(std::string_view folder) const {
    if (unlistable.contains(std::string(folder)))
        throw Failure(FailureNumber::PermissionDenied, std::string(folder));
}

}  // namespace quillon::support
