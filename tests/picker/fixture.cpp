#include "tests/picker/fixture.h"

#include <algorithm>
#include <cstdio>

#include "database/sql.h"
#include "jukebox/jukebox_database.h"

namespace quillon {
namespace {

DriveTable Drives(const std::filesystem::path& folder) {
    DriveTable drives(folder);
    drives.Map("D", folder);
    return drives;
}

std::string Numbered(const char* word, int number) {
    const std::string digits = "000" + std::to_string(number);
    return word + digits.substr(digits.size() - 4);
}

}  // namespace

NotingProvider::NotingProvider(const DriveTable& drives) : resolver_(drives), real_(resolver_) {}

std::unique_ptr<Connection> NotingProvider::Open(std::string_view connectionString) {
    opened.emplace_back(connectionString);
    if (refuses) throw Failure(FailureNumber::PermissionDenied, "database");
    auto connection = std::make_unique<support::FaultyConnection>(real_.Open(connectionString));
    for (const std::string& statement : refusedStatements)
        connection->Refuse(statement);
    return connection;
}

PickerFixture::PickerFixture() : databases(Drives(folder_.Path())) {
    CreateJukeboxDatabase(folder_.Path() / "cdj.mdb");
    run.settings.Nirvis_CDJ_DB = R"(D:\cdj.mdb)";
    run.settings.AlbumCoverFolder = R"(D:\Covers\)";
    run.settings.coverPath = "/Quillon/albumcovers/";
    run.connection =
        databases.Open(R"(Provider = Microsoft.Jet.OLEDB.4.0; Data Source=D:\cdj.mdb)");
    run.databases = &databases;
    databases.opened.clear();
    files.AddFolder(R"(C:\HomeSeer\HTML)");
}

void PickerFixture::AddAlbum(const AlbumRow& album) {
    Execute(
        "INSERT INTO Albums (CDJID, Artist, Title, Tracks, Minutes, Seconds, ImageFile) VALUES (" +
        FilterQuoted(album.cdjid) + ", " + FilterQuoted(album.artist) + ", " +
        FilterQuoted(album.title) + ", " + std::to_string(album.tracks) + ", -1, -1, " +
        FilterQuoted(album.image) + ")");
    for (int i = 1; i <= album.tracks; ++i) {
        const std::string number = std::to_string(i);
        Execute("INSERT INTO Tracks (CDJID, Track, Title, Minutes, Seconds) VALUES (" +
                FilterQuoted(album.cdjid) + ", " + number + ", 'Song " + number + "', " + number +
                ", " + number + ")");
    }
}

void PickerFixture::AddAlbums(int count) {
    for (int i = 1; i <= count; ++i)
        AddAlbum({Numbered("252E671073EC", i), Numbered("Artist ", i), Numbered("Album ", i)});
}

std::string PickerFixture::PagePath(int number) {
    return std::string(Folder) + "\\AlbumPicker" + std::to_string(number) + ".asp";
}

std::vector<std::string> PickerFixture::Names(std::string_view folder) {
    std::vector<std::string> names;
    for (const FolderEntry& entry : files.SubFolders(folder))
        names.push_back(entry.name + "\\");
    for (const FileEntry& entry : files.FilesIn(folder))
        names.push_back(entry.name);
    return names;
}

std::vector<std::string> PickerFixture::Items() const {
    std::vector<std::string> items;
    for (const std::string& call : world.calls.Of({"Item "}))
        items.push_back(call.substr(std::string_view("Item ").size()));
    return items;
}

std::size_t PickerFixture::Count(std::string_view text, std::string_view piece) {
    std::size_t count = 0;
    for (std::size_t at = text.find(piece); at != std::string_view::npos;
         at = text.find(piece, at + 1)) {
        ++count;
    }
    return count;
}

}  // namespace quillon
