#include "jukebox/jukebox_database.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "jet/database.h"
#include "jukebox/genre_names.h"

namespace quillon {
namespace {

using jet::ColumnDefinition;
using jet::ColumnType;
using jet::IndexDefinition;
using jet::TableDefinition;

constexpr std::uint16_t NameSize = 255, CdjidSize = 20, WordSize = 50, PlaylistTypeSize = 20;

ColumnDefinition Text(std::string_view name, std::uint16_t size = NameSize) {
    return {.name = std::string(name), .type = ColumnType::Text, .size = size};
}

ColumnDefinition Field(std::string_view name, ColumnType type) {
    return {.name = std::string(name), .type = type};
}

ColumnDefinition Integer(std::string_view name) {
    return Field(name, ColumnType::Integer);
}
ColumnDefinition YesNo(std::string_view name) {
    return Field(name, ColumnType::Boolean);
}
ColumnDefinition Memo(std::string_view name) {
    return Field(name, ColumnType::Memo);
}
ColumnDefinition DateAndTime(std::string_view name) {
    return Field(name, ColumnType::Date);
}

ColumnDefinition AutoNumber(std::string_view name) {
    return {.name = std::string(name), .type = ColumnType::Long, .autoNumber = true};
}

/// `key` is the primary key's column, "" for a table without one; every column of `indexed` gets
/// an index of its own name.
TableDefinition Table(std::string_view name, std::vector<ColumnDefinition> columns,
                      std::string_view key, std::initializer_list<std::string_view> indexed = {}) {
    TableDefinition table{std::string(name), std::move(columns), {}};
    const auto position = [&table](std::string_view column) {
        return std::vector{jet::IndexColumn{.column = table.FindColumn(column).value()}};
    };
    if (!key.empty()) {
        table.indexes.push_back({.name = "PrimaryKey",
                                 .columns = position(key),
                                 .primary = true,
                                 .unique = true,
                                 .required = true});
    }
    for (const std::string_view column : indexed)
        table.indexes.push_back({.name = std::string(column), .columns = position(column)});
    return table;
}

TableDefinition Albums() {
    return Table("Albums",
                 {AutoNumber("ID"),
                  Text("CDJID", CdjidSize),
                  Text("Title"),
                  Text("Artist"),
                  Integer("Player"),
                  YesNo("LocationValid"),
                  Integer("Position"),
                  Integer("FrameOffset"),
                  Integer("Frames"),
                  Integer("Group"),
                  DateAndTime("DateAdded"),
                  DateAndTime("DateReleased"),
                  DateAndTime("DateLastPlayed"),
                  Integer("Tracks"),
                  Integer("Minutes"),
                  Integer("Seconds"),
                  Integer("Rating1"),
                  Integer("Rating2"),
                  Integer("Rating3"),
                  Integer("Rating4"),
                  Integer("TimesPlayed"),
                  Integer("TimePlayed"),
                  YesNo("NeverPlay"),
                  Text("ImageFile")},
                 "ID", {"CDJID", "Player", "Title", "Artist"});
}

TableDefinition Tracks() {
    return Table("Tracks",
                 {AutoNumber("ID"),
                  Text("CDJID", CdjidSize),
                  Integer("Track"),
                  Text("Title"),
                  Text("Artist"),
                  Integer("Minutes"),
                  Integer("Seconds"),
                  Text("SoundFile"),
                  Memo("Notes"),
                  DateAndTime("DateAdded"),
                  DateAndTime("DateReleased"),
                  DateAndTime("DateLastPlayed"),
                  Integer("Frames"),
                  Integer("Rating1"),
                  Integer("Rating2"),
                  Integer("Rating3"),
                  Integer("Rating4"),
                  Integer("TimesPlayed"),
                  Integer("TimePlayed"),
                  Integer("Group"),
                  YesNo("NeverPlay")},
                 "ID", {"CDJID", "Title", "Artist"});
}

TableDefinition Playlists() {
    return Table("Playlists",
                 {AutoNumber("ID"), Text("Title"), Text("FilePath"), Text("Filename"),
                  Text("Type", PlaylistTypeSize), YesNo("AutoGenre"), YesNo("AutoArtist"),
                  YesNo("Device"), Text("DeviceCode", WordSize), YesNo("Browser")},
                 "ID");
}

TableDefinition Spinner() {
    return Table(
        "Spinner",
        {AutoNumber("ID"), Text("Artist"), Text("Album"), Text("Song"), Text("Genre", WordSize),
         Integer("Length"), Integer("Playcount"), Text("Playlist"), Integer("Exclude"),
         Integer("Include"), Text("FileName"), DateAndTime("DownLoadTime")},
        "ID", {"Artist"});
}

TableDefinition SpinnerArtist() {
    return Table(
        "SpinnerArtist",
        {AutoNumber("ID"), Text("Artist"), Integer("ArtistID"), Memo("ShortBio"), Memo("LongBio")},
        "ID");
}

TableDefinition SpinnerGenre() {
    return Table("SpinnerGenre", {Integer("GenreID"), Text("Genre", WordSize)}, "GenreID");
}

TableDefinition SpinnerID3Differences() {
    return Table("SpinnerID3Differences",
                 {DateAndTime("UpdateTime"), Text("Field", WordSize), Text("ID3Value"),
                  Text("DBValue"), Text("Artist"), Text("Album"), Text("Track")},
                 "");
}

void FillGenres(jet::Database& database) {
    const auto genres = database.OpenTable("SpinnerGenre");
    std::int64_t id = 0;
    for (const std::string_view name : StandardGenreNames) {
        genres->AddNew();
        genres->Set("GenreID", id++);
        genres->Set("Genre", std::string(name));
        genres->Update();
    }
}

}  // namespace

const std::vector<TableDefinition>& JukeboxTables() {
    static const std::vector<TableDefinition> tables{Albums(),
                                                     Tracks(),
                                                     Playlists(),
                                                     Spinner(),
                                                     SpinnerArtist(),
                                                     SpinnerGenre(),
                                                     SpinnerID3Differences()};
    return tables;
}

void CreateJukeboxDatabase(const std::filesystem::path& path) {
    jet::Database::Create(path, JukeboxTables());
    try {
        jet::Database database = jet::Database::Open(path, jet::OpenMode::ReadWrite);
        FillGenres(database);
        database.Flush();
    } catch (...) {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
        throw;
    }
}

}  // namespace quillon
