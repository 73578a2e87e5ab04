#include "tests/jet/engine/sample_database.h"

#include <array>
#include <cstdlib>

#include "jet/dialect/date_text.h"
#include "tests/outside/command.h"
#include "tests/outside/structural_check.h"

namespace jet::testing {

namespace {

struct ShowValue {
    std::string operator()(Null) const { return "Null"; }
    std::string operator()(bool value) const { return value ? "True" : "False"; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(double value) const {
        std::array<char, 40> text{};
        std::snprintf(text.data(), text.size(), "%.10g", value);
        return text.data();
    }
    std::string operator()(Date value) const { return '#' + dialect::DateText(value.days) + '#'; }
    std::string operator()(Currency value) const {
        return "$" + std::to_string(value.tenThousandths);
    }
    std::string operator()(const Decimal& value) const {
        return (value.negative ? "-" : "") + std::to_string(value.magnitude[3]) + "/" +
               std::to_string(value.scale);
    }
    std::string operator()(const Guid&) const { return "guid"; }
    std::string operator()(const Bytes& value) const {
        return std::to_string(value.size()) + " bytes";
    }
    std::string operator()(const std::string& value) const { return value; }
};

}  // namespace

ColumnDefinition Text(const std::string& name, std::uint16_t size) {
    ColumnDefinition column;
    column.name = name;
    column.type = ColumnType::Text;
    column.size = size;
    return column;
}

ColumnDefinition Field(const std::string& name, ColumnType type) {
    ColumnDefinition column;
    column.name = name;
    column.type = type;
    return column;
}

ColumnDefinition Integer(const std::string& name) {
    return Field(name, ColumnType::Integer);
}

std::vector<TableDefinition> LibraryTables() {
    ColumnDefinition id = Field("ID", ColumnType::Long);
    id.autoNumber = true;
    IndexDefinition key;
    key.name = "PrimaryKey";
    key.columns = {{0, true}};
    key.primary = key.unique = key.required = true;
    const auto date = [](const std::string& name) { return Field(name, ColumnType::Date); };
    const auto yesNo = [](const std::string& name) { return Field(name, ColumnType::Boolean); };
    const auto memo = [](const std::string& name) { return Field(name, ColumnType::Memo); };
    return {
        {"Albums",
         {id, Text("CDJID", 50), Text("Title"), Text("Artist"), Integer("Player"),
          Integer("Tracks"), Integer("Minutes"), Integer("Seconds"), Integer("Group"),
          date("DateAdded"), yesNo("NeverPlay"), Text("ImageFile")},
         {key}},
        {"Tracks",
         {id, Text("CDJID", 50), Integer("Track"), Text("Title"), Text("Artist"),
          Integer("Minutes"), Integer("Seconds"), Text("SoundFile"), memo("Notes"),
          date("DateAdded"), yesNo("NeverPlay")},
         {key}},
        {"Playlists",
         {id, Text("Title"), Text("FilePath"), Text("Filename"), Text("Type", 10),
          yesNo("AutoGenre"), yesNo("AutoArtist")},
         {key}},
        {"Spinner",
         {id, Text("Artist"), Text("Album"), Text("Song"), Text("Genre", 50), Integer("Length"),
          Integer("Playcount"), Integer("Exclude"), Text("FileName")},
         {key}},
        {"SpinnerArtist", {id, Text("Artist"), Integer("ArtistID"), memo("ShortBio")}, {key}},
        {"SpinnerGenre", {Integer("GenreID"), Text("Genre", 50)}, {}},
        {"SpinnerID3Differences",
         {date("UpdateTime"), Text("Field"), Text("ID3Value"), Text("DBValue"), Text("Artist"),
          Text("Album"), Text("Track")},
         {}},
    };
}

std::string Show(const Value& value) {
    return std::visit(ShowValue{}, value);
}

std::string Rows(RecordSet& rows) {
    std::string text;
    for (; !rows.IsEof(); rows.MoveNext()) {
        if (!text.empty()) text += '\n';
        for (std::size_t i = 0; i < rows.FieldCount(); ++i)
            text += (i == 0 ? "" : "|") + Show(rows.Get(i));
    }
    return text;
}

std::string Rows(Database& database, const std::string& query) {
    return Rows(*database.Query(query));
}

SampleDatabase::SampleDatabase() {
    const std::vector<TableDefinition> tables = LibraryTables();
    Database::Create(path_, tables);
    Reopen();
    for (const char* statement : {
             R"(INSERT INTO Albums (CDJID, Title, Artist, Player, Tracks, ImageFile) VALUES
                ("252E671073EC0001", "Blue", "Ann", 1001, 2, "D:\c\Ann - Blue.jpg"))",
             R"(INSERT INTO Albums (CDJID, Title, Artist, Player, Tracks, ImageFile) VALUES
                ("252E671073EC0007", "Red", "Bob", 1001, 0, ""))",
             R"(INSERT INTO Albums (CDJID, Title, Artist, Player, Tracks) VALUES
                ("A0B1C2", "Disc", "Cid", 1, 1))",
             R"(INSERT INTO Tracks (CDJID, Track, Title, Artist, Minutes, Seconds, SoundFile)
                VALUES ("252E671073EC0001", 2, "Sky", "Ann", 3, 5, "D:\Music\Ann\Blue\Sky.mp3"))",
             R"(INSERT INTO Tracks (CDJID, Track, Title, Artist, Minutes, Seconds, SoundFile)
                VALUES ("252E671073EC0001", 1, "Sea", "Ann", 2, 0,
                        "D:\Music\Ann\Blue\100%_[Sea]#1.mp3"))",
             R"(INSERT INTO Tracks (CDJID, Track, Title, Artist, Minutes, Seconds, SoundFile)
                VALUES ("252E671073EC0007", 0, "Rose", "Bob", -1, -1, ""))",
             R"(INSERT INTO Tracks (CDJID, Track, Title, Artist) VALUES
                ("252E671073EC0007", 1, "Rust", "Bob"))",
             R"(INSERT INTO Tracks (CDJID, Track, Title, Artist) VALUES
                ("A0B1C2", 1, "Disc 1", "Cid"))",
             R"(INSERT INTO Spinner (Artist, Album, Song, Genre, Playcount, Exclude, FileName)
                VALUES ("Ann", "Blue", "Sky", Null, 2, 0, "x-Rock-y"))",
             R"(INSERT INTO Spinner (Artist, Album, Song, Genre, Playcount, Exclude, FileName)
                VALUES ("ann", "blue", "SKY", "Jazz", 3, 1, "x-Jazz-y"))",
             R"(INSERT INTO Spinner (Artist, Album, Song, Genre, Playcount, Exclude, FileName)
                VALUES ("Bob", "Red", "Rose", "Folk", 4, 0, "f"))",
             R"(INSERT INTO SpinnerGenre VALUES (0, "Blues"))",
             R"(INSERT INTO SpinnerGenre VALUES (17, "Rock"))",
             R"(INSERT INTO SpinnerArtist (Artist, ArtistID, ShortBio) VALUES ("Ann", 0, ""))",
             R"(INSERT INTO Playlists (FilePath, Filename, Type, AutoGenre, AutoArtist) VALUES
                ("D:\P\", "Ann", "pla", False, True))",
             R"(INSERT INTO Playlists (FilePath, Filename, Type, AutoGenre, AutoArtist) VALUES
                ("", "Mine", "pla", False, False))",
             R"(INSERT INTO SpinnerID3Differences (Field, ID3Value, Artist, Album, Track) VALUES
                ("Genre", "Rock", "Bob", "Red", "Rose"))",
             R"(INSERT INTO SpinnerID3Differences (Field, ID3Value, Artist, Album, Track) VALUES
                ("Comment", "125", "Ann", "Blue", "Sky"))",
         })
        Execute(statement);
}

void SampleDatabase::Reopen(OpenMode mode) {
    database_.reset();
    database_ = std::make_unique<Database>(Database::Open(path_, mode));
}

std::string StructuralFaults(const std::filesystem::path& database) {
    return outside::StructuralFaults(database);
}

std::string Exported(const std::filesystem::path& database, const std::string& table) {
    return outside::RunCommand("mdb-export -H " + outside::ShellQuoted(database.string()) + " " +
                               outside::ShellQuoted(table) + " 2>&1")
        .output;
}

}  // namespace jet::testing
