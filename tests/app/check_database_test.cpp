#include <array>
#include <filesystem>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "jet/check.h"
#include "jet/database.h"
#include "jukebox/jukebox_database.h"
#include "tests/app/check_fixture.h"
#include "tests/app/pending_journal.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

class CheckDatabase : public CheckFixture {
  protected:
    std::string Told() const { return Section(Check().out, "Database"); }

    static std::string LockEntry(std::string machine, std::string user) {
        machine.resize(32, ' ');
        user.resize(32, ' ');
        return machine + user;
    }
    static std::string ThisMachine() {
        std::array<char, 256> name{};
        gethostname(name.data(), name.size() - 1);
        return name.data();
    }
    /// Lets the definition of the table with 148 rows say that it has none.
    void SpoilRowCount(const std::string& table) const {
        std::string content = Read("shelf/jukebox.mdb");
        const std::string count{'\x94', '\0', '\0', '\0'};
        for (std::size_t at = 0; (at = content.find(count, at + 1)) != std::string::npos;) {
            if (at % 4096 == 16 && content[at - 16] == 2) content[at] = '\0';
        }
        Write("shelf/jukebox.mdb", content);
        const auto faults = jet::CheckFile(Path("shelf/jukebox.mdb")).faults;
        ASSERT_EQ(faults.size(), 1U);
        ASSERT_EQ(faults[0].table, table);
    }
    void Replace(const std::vector<jet::TableDefinition>& tables) const {
        fs::remove(Path("shelf/jukebox.mdb"));
        jet::Database::Create(Path("shelf/jukebox.mdb"), tables);
    }
};

TEST_F(CheckDatabase, TellsEveryTableThatIsNeeded) {
    Execute("INSERT INTO Albums (CDJID, Title, Artist, Player) VALUES ('1', 'T', 'A', 1001)");
    Execute(
        "INSERT INTO Tracks (CDJID, Track, SoundFile) VALUES ('1', 1, 'D:\\Music\\A\\T\\x.mp3')");
    Execute("INSERT INTO Tracks (CDJID, Track, SoundFile) VALUES ('1', 2, 'E:\\x.mp3')");
    EXPECT_EQ(Told(), "  H:\\jukebox.mdb\n  " + Path("shelf/jukebox.mdb").string() +
                          "\n"
                          "  Table                  Rows  Fields\n"
                          "  ---------------------  ----  ---------\n"
                          "  Albums                    1  all there\n"
                          "  Tracks                    2  all there\n"
                          "  Playlists                 0  all there\n"
                          "  Spinner                   0  all there\n"
                          "  SpinnerArtist             0  all there\n"
                          "  SpinnerGenre            148  all there\n"
                          "  SpinnerID3Differences     0  all there\n"
                          "  2 of the tracks are the library's own, 1 of them name a file in "
                          "a library folder");
}

TEST_F(CheckDatabase, NamesTablesAndFieldsThatItLacks) {
    Replace({{"albums", {{.name = "CDJID", .type = jet::ColumnType::Text, .size = 20}}, {}},
             {"Wishes", {{.name = "ID", .type = jet::ColumnType::Long}}, {}},
             {"Notes", {{.name = "ID", .type = jet::ColumnType::Long}}, {}}});
    EXPECT_EQ(Check().status, 2);
    const std::string told = Told();
    EXPECT_TRUE(Has(told, "\n  Albums                    0  no field ID, no field Title")) << told;
    EXPECT_TRUE(Has(told, "\n  Tracks                    -  the table is missing\n")) << told;
    EXPECT_TRUE(told.ends_with("\n  Other tables: Notes, Wishes")) << told;
    const std::string problems = Problems();
    EXPECT_TRUE(Has(problems, "Table Albums has no field Title; ")) << problems;
    EXPECT_TRUE(Has(problems, "; The database has no table Tracks; ")) << problems;
    EXPECT_TRUE(Has(problems, "The database has no table SpinnerGenre")) << problems;
    EXPECT_TRUE(Has(problems, "Name the jukebox's own database in Nirvis_CDJ_DB")) << problems;
}

TEST_F(CheckDatabase, IsAProblemWhenItIsNotThereOrNoDatabase) {
    Set("Nirvis_CDJ_DB", "");
    EXPECT_TRUE(Has(Problems(), "Setting Nirvis_CDJ_DB is empty"));
    EXPECT_TRUE(Has(Check().out, "\nDatabase\n  none\n"));
    Set("Nirvis_CDJ_DB", "H:\\nowhere.mdb");
    EXPECT_TRUE(Has(Problems(), "nowhere.mdb is not there. Correct Nirvis_CDJ_DB"));
    Set("Nirvis_CDJ_DB", "Q:\\jukebox.mdb");
    EXPECT_TRUE(Has(Problems(), "The database cannot be found: Path not found: Q:\\jukebox.mdb"));
    Set("Nirvis_CDJ_DB", "H:\\Quillon.ini");
    EXPECT_TRUE(Has(Problems(), "Name the jukebox's database in Nirvis_CDJ_DB"));
    EXPECT_EQ(Check().status, 2);
}

TEST_F(CheckDatabase, IsAProblemWhenItIsDamaged) {
    fs::resize_file(Path("shelf/jukebox.mdb"), 40960);
    EXPECT_EQ(Check().status, 2);
    EXPECT_TRUE(Has(Problems(), "Put a backup in its place")) << Problems();
    EXPECT_TRUE(Told().ends_with("  cannot be used")) << Told();
}

TEST_F(CheckDatabase, IsAProblemWhenItIsNoFile) {
    fs::remove(Path("shelf/jukebox.mdb"));
    ASSERT_EQ(mkfifo(Path("shelf/jukebox.mdb").c_str(), 0600), 0);
    EXPECT_EQ(Check().status, 2);
    EXPECT_TRUE(Has(Problems(), "jukebox.mdb is a FIFO and not")) << Problems();
    const ProgramResult run = CallProgram({"run", "--quiet", "--host", Path("shelf")});
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(Has(Read("shelf/host.log"), "jukebox.mdb is a FIFO and not an Access database"));
}

TEST_F(CheckDatabase, MayBeASymbolicLink) {
    MakeFolder("elsewhere");
    fs::rename(Path("shelf/jukebox.mdb"), Path("elsewhere/cdj.mdb"));
    fs::create_symlink(Path("elsewhere/cdj.mdb"), Path("shelf/jukebox.mdb"));
    EXPECT_EQ(Check().status, 0) << Problems();
    const jet::Database open =
        jet::Database::Open(Path("elsewhere/cdj.mdb"), jet::OpenMode::ReadWrite);
    EXPECT_TRUE(Has(Problems(), "cdj.mdb is in use by ")) << Problems();
    const ProgramResult run = CallProgram({"run", "--quiet", "--host", Path("shelf")});
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(Has(Read("shelf/host.log"), "cdj.mdb is in use by "));
}

TEST_F(CheckDatabase, IsAProblemWhereARunWouldRefuseItAsDamaged) {
    SpoilRowCount("SpinnerGenre");
    EXPECT_EQ(Check().status, 2);
    EXPECT_TRUE(Has(Problems(),
                    "a run refuses it: table SpinnerGenre: the definition "
                    "counts 0 rows, there are 148"))
        << Problems();
    EXPECT_TRUE(Has(Problems(), "Put a backup in its place"));
}

TEST_F(CheckDatabase, IsWorthALookWhereATableThatNoRunNeedsIsDamaged) {
    std::vector<jet::TableDefinition> tables = JukeboxTables();
    tables.push_back({"Wishes", {{.name = "ID", .type = jet::ColumnType::Long}}, {}});
    Replace(tables);
    for (int i = 0; i < 148; ++i)
        Execute("INSERT INTO Wishes (ID) VALUES (" + std::to_string(i) + ")");
    EXPECT_EQ(Cautions(), "");
    SpoilRowCount("Wishes");
    EXPECT_EQ(Check().status, 0);
    EXPECT_TRUE(Has(Cautions(),
                    "A table that no run needs is damaged. It is left as it is: "
                    "table Wishes: the definition counts 0 rows, there are 148"))
        << Cautions();
    const ProgramResult run = CallProgram({"run", "--quiet", "--host", Path("shelf")});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(
        Has(Read("shelf/host.log"), "Table Wishes of the database is damaged; no run needs it"));
}

TEST_F(CheckDatabase, SaysThatAJournalWaits) {
    LeaveJournal(Path("shelf/jukebox.mdb"));
    EXPECT_EQ(Check().status, 0);
    const std::string cautions = Cautions();
    EXPECT_TRUE(
        Has(cautions, Path("shelf/jukebox.mdb").string() + ".journal has not been carried out yet"))
        << cautions;
    EXPECT_TRUE(Has(cautions, "'quillon db recover " + Path("shelf/jukebox.mdb").string() + "'"));
    LeaveJournal(Path("shelf/jukebox.mdb"), 3);
    EXPECT_TRUE(Has(Cautions(), "was left for the database before that was replaced or changed"));
}

TEST_F(CheckDatabase, RefusesAGenreNumberThatWouldStopTheStartUp) {
    Execute("INSERT INTO SpinnerGenre (GenreID, Genre) VALUES (256, 'Too much')");
    EXPECT_EQ(Check().status, 2);
    EXPECT_TRUE(Has(Problems(), "Table SpinnerGenre has a row with a GenreID"));
    EXPECT_TRUE(Has(Problems(), "DELETE * FROM SpinnerGenre WHERE"));
}

TEST_F(CheckDatabase, WarnsOfAlbumsThatShareAnIdentifier) {
    for (const char* const cdjid : {"'1'", "'2'", "'2'", "'3'", "'3'", "'3'"}) {
        Execute(std::string("INSERT INTO Albums (CDJID, Title, Artist, Player) VALUES (") + cdjid +
                ", 'T', 'A', 1)");
    }
    EXPECT_EQ(Check().status, 0);
    EXPECT_TRUE(Has(Cautions(), "2 identifiers are carried by more than one album"));
    Execute("DELETE * FROM Albums WHERE CDJID='3'");
    EXPECT_TRUE(Has(Cautions(), "An identifier is carried by more than one album"));
    Execute("DELETE * FROM Albums WHERE CDJID='2'");
    EXPECT_EQ(Cautions(), "");
}

TEST_F(CheckDatabase, WarnsWhenIdentifiersRunOut) {
    const auto addAlbums = [this](int from, int to) {
        jet::Database database =
            jet::Database::Open(Path("shelf/jukebox.mdb"), jet::OpenMode::ReadWrite);
        for (int number = from; number < to; ++number)
            database.Execute(fmt::format(
                "INSERT INTO Albums (CDJID, Player) VALUES ('252E671073EC{:04}', 1001)", number));
    };
    addAlbums(0, 9899);
    Execute("INSERT INTO Albums (CDJID, Player) VALUES ('C70A5B0F', 1)");
    EXPECT_EQ(Cautions(), "");
    addAlbums(9899, 9900);
    EXPECT_TRUE(Has(Cautions(),
                    "9900 of the 10,000 identifiers for albums are in use. When all are in use, a "
                    "run leaves new albums out"));
}

TEST_F(CheckDatabase, SeesThatItIsOpenElsewhere) {
    Write("shelf/jukebox.ldb", LockEntry("JUKEBOX-PC", "Admin"));
    EXPECT_EQ(Check().status, 2);
    EXPECT_TRUE(Has(Problems(),
                    "seems to be in use by JUKEBOX-PC. If no program has it open, "
                    "delete " +
                        Path("shelf/jukebox.ldb").string()));
    // Another computer's locks cannot be seen from here.
    Write("shelf/jukebox.ldb", LockEntry("ANOTHER-PC", "Quillon"));
    EXPECT_EQ(Check().status, 2);
}

TEST_F(CheckDatabase, SeesThatARunIsUnderWay) {
    const jet::Database open =
        jet::Database::Open(Path("shelf/jukebox.mdb"), jet::OpenMode::ReadWrite);
    EXPECT_EQ(Check().status, 2);
    EXPECT_TRUE(Has(Problems(), "is in use by ")) << Problems();
}

TEST_F(CheckDatabase, SeesThatARunWasCutOff) {
    Write("shelf/jukebox.ldb", LockEntry(ThisMachine(), "Quillon"));
    EXPECT_EQ(Check().status, 0) << "a run takes over what a killed run has left";
    EXPECT_TRUE(Has(Cautions(), "A run was cut off"));
    Write("shelf/jukebox.ldb", "");
    EXPECT_EQ(Cautions(), "");
}

TEST_F(CheckDatabase, TellsWhatTheNextRunDoesAboutLeftovers) {
    const std::string database = Path("shelf/jukebox.mdb").string();
    for (const char* const ending : {".journal", ".playlists"})
        Write("shelf/jukebox.mdb" + std::string(ending), "left");
    EXPECT_EQ(Check().status, 0);
    const std::string cautions = Cautions();
    EXPECT_TRUE(Has(cautions, "The journal " + database + ".journal is not complete"));
    EXPECT_TRUE(Has(cautions, database + ".playlists: from it the next reconciliation learns"));
}

TEST_F(CheckDatabase, SaysThatNoReconciliationStartsWhereItCannotKeepItsOwnFiles) {
    for (const std::string ending : {".playlists"}) {
        const std::filesystem::path path = Path("shelf/jukebox.mdb" + ending);
        std::filesystem::create_symlink("elsewhere", path);
        EXPECT_EQ(Check().status, 2);
        EXPECT_TRUE(
            Has(Problems(),
                path.string() +
                    " is not a regular file. A reconciliation keeps a file of its own there"));
        Choose("AlbumPicker");
        EXPECT_EQ(Check().status, 0);
        EXPECT_TRUE(Has(Cautions(), "so none starts. Remove it"));
        Set("Reconcile", "1");
        Set("AlbumPicker", "0");
        std::filesystem::remove(path);
    }
}

}  // namespace
}  // namespace quillon
