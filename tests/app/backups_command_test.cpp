#include "app/commands/backups_command.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <sstream>

#include "app/confirmation.h"
#include "jet/database.h"
#include "tests/app/check_fixture.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

/// A host folder with an album and one old backup, made by hand.
class BackupCommands : public CheckFixture {
  protected:
    static constexpr const char* Name = "5102026_40000_AM";

    BackupCommands() {
        Write("shelf/Playlists/Mine.pla", "then");
        fs::copy(Path("shelf/jukebox.mdb"), CopyOf("jukebox.mdb"));
        fs::copy(Path("shelf/Playlists"), CopyOf("Playlists"));
        then = Read("shelf/jukebox.mdb");
        AddOwnedTracks({R"(D:\Music\a.mp3)"});
        Write("shelf/Playlists/Mine.pla", "now");
        now = Read("shelf/jukebox.mdb");
    }

    fs::path CopyOf(const std::string& original, const std::string& mark = Name) const {
        return Path("shelf/" + original + "_Copy Dated_" + mark + "_");
    }
    ProgramResult Backups(const std::vector<std::string>& more = {}) const {
        std::vector<std::string> words{"backups", "--host", Path("shelf")};
        words.insert(words.end(), more.begin(), more.end());
        return CallProgram(words);
    }
    ProgramResult Restore(const std::string& name, bool yes = true) const {
        std::vector<std::string> words{"restore", name, "--host", Path("shelf")};
        if (yes) words.emplace_back("--yes");
        return CallProgram(words);
    }
    /// The name of the newest backup, which stands in the third line.
    std::string NewestBackup() const {
        std::istringstream lines(Backups().out);
        std::string name;
        for (int i = 0; i < 3; ++i)
            std::getline(lines, name);
        return name.substr(0, name.find(' '));
    }

    std::string then, now;
};

TEST_F(BackupCommands, ListsBackupsWithAgeAndSize) {
    const ProgramResult result = Backups();
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("5102026_40000_AM  2026-05-10 04:00:00  "));
    EXPECT_THAT(result.out, HasSubstr("database, pla playlists\n1 backup, "));
    EXPECT_THAT(result.out, HasSubstr("The last 30 stay, then the last one of each month"));
}

TEST_F(BackupCommands, ListsThemAsJson) {
    const ProgramResult result = Backups({"--json"});
    EXPECT_THAT(result.out,
                StartsWith(R"({"stamp":"5102026_40000_AM","time":"2026-05-10T04:00:00","age)"));
    EXPECT_THAT(
        result.out,
        HasSubstr(
            R"("whole":true,"copies":[{"part":"database","path":"H:\\jukebox.mdb_Copy Dated_5)"));
    EXPECT_THAT(result.out, EndsWith("\"sameAsBefore\":[]}\n"));
}

TEST_F(BackupCommands, SayWhereThereIsNone) {
    fs::remove_all(CopyOf("jukebox.mdb"));
    fs::remove_all(CopyOf("Playlists"));
    EXPECT_THAT(Backups().out, HasSubstr("There are no backups yet."));
    EXPECT_EQ(Backups({"--json"}).out, "");
}

TEST_F(BackupCommands, PutDatabaseAndPlaylistsBack) {
    const ProgramResult result = Restore(Name);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(Read("shelf/jukebox.mdb"), then);
    EXPECT_EQ(Read("shelf/Playlists/Mine.pla"), "then");
    EXPECT_FALSE(fs::exists(Path("shelf/jukebox.ldb")));
    EXPECT_FALSE(fs::exists(Path("shelf/jukebox.mdb.restoring")));

    const std::string ofNow = NewestBackup();
    EXPECT_THAT(result.out, HasSubstr("Done. 'quillon restore " + ofNow + " --host "));
    EXPECT_EQ(Restore(ofNow).status, 0);
    EXPECT_EQ(Read("shelf/jukebox.mdb"), now);
    EXPECT_EQ(Read("shelf/Playlists/Mine.pla"), "now");
}

TEST_F(BackupCommands, PutADatabaseBackThatCannotBeOpenedAnyMore) {
    Write("shelf/jukebox.mdb", "nothing like a database");
    EXPECT_EQ(Restore(Name).status, 0);
    EXPECT_EQ(Read("shelf/jukebox.mdb"), then);
}

TEST_F(BackupCommands, AskFirst) {
    const std::istringstream answer("no\n");
    std::streambuf* const before = std::cin.rdbuf(answer.rdbuf());
    const ProgramResult result = Restore(Name, false);
    std::cin.rdbuf(before);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, HasSubstr("database       H:\\jukebox.mdb: "));
    EXPECT_THAT(result.out,
                HasSubstr("m3u playlists  H:\\M3u: stays as it is, this backup has no"));
    EXPECT_THAT(result.out, EndsWith("Go on? [y/N] Nothing was changed.\n"));
    EXPECT_EQ(Read("shelf/jukebox.mdb"), now);
    EXPECT_EQ(NewestBackup(), Name);
}

TEST(Confirmation, TakesNothingButAYesForOne) {
    const auto answered = [](const std::string& text) {
        std::istringstream in(text);
        std::ostringstream out;
        return IsConfirmed("Sure?", in, out);
    };
    EXPECT_TRUE(answered("y\n"));
    EXPECT_TRUE(answered(" Yes"));
    for (const char* const text : {"", "\n", "n\n", "no", "ok", "  "})
        EXPECT_FALSE(answered(text)) << text;
}

TEST_F(BackupCommands, SayWhatThereIsWhereTheNameIsWrong) {
    const ProgramResult result = Restore("5102026_40000_PM");
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, StartsWith("quillon: there is no backup 5102026_40000_PM; did you mean "
                                       "5102026_40000_AM? 'quillon backups --host "));
    EXPECT_EQ(Read("shelf/jukebox.mdb"), now);
}

TEST_F(BackupCommands, RefuseWhileAnotherProgramHasTheDatabaseOpen) {
    {
        const jet::Database other =
            jet::Database::Open(Path("shelf/jukebox.mdb"), jet::OpenMode::ReadWrite);
        const ProgramResult result = Restore(Name);
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.err, HasSubstr("is in use by"));
    }
    EXPECT_EQ(Read("shelf/jukebox.mdb"), now);
    EXPECT_EQ(Read("shelf/Playlists/Mine.pla"), "now");
    EXPECT_EQ(NewestBackup(), Name);
}

TEST_F(BackupCommands, LetNoRunStartAfterOneThatWasCutShort) {
    Write("shelf/jukebox.mdb.restoring", std::string(Name) + "\r\n");
    EXPECT_EQ(CallProgram({"run", "--host", Path("shelf"), "--quiet"}).status, 2);
    EXPECT_THAT(Read("shelf/host.log"), HasSubstr("quillon restore 5102026_40000_AM"));
    EXPECT_EQ(Read("shelf/jukebox.mdb"), now);
    EXPECT_THAT(Problems(),
                HasSubstr("The backup 5102026_40000_AM has been put back only in part"));
    EXPECT_THAT(Backups().out, HasSubstr("A restore was cut short. 'quillon restore 5102026_4000"));
    EXPECT_EQ(Restore(Name).status, 0);
    EXPECT_EQ(Problems(), "");
}

TEST_F(BackupCommands, CheckTellsHowManyBackupsStay) {
    EXPECT_THAT(Check().out,
                HasSubstr("Backups          the last 30 stay, then one a month for a "));
    const std::string host = Read("shelf/host.ini");
    const auto with = [&](const std::string& line) {
        std::string text = host;
        text.replace(text.find("Keep=30"), 7, line);
        Write("shelf/host.ini", text);
        return Check().out;
    };
    EXPECT_THAT(with(""), HasSubstr("Backups          all stay, and each run makes new ones"));
    EXPECT_EQ(Cautions(), "");
    EXPECT_THAT(with("Keep=some"), HasSubstr("Backups          all stay"));
    EXPECT_THAT(Cautions(), HasSubstr("Keep in [Backups] of host.ini is \"some\", which is not a"));
    with("Kep=30");
    EXPECT_THAT(Cautions(), HasSubstr("host.ini has Kep=30 in [Backups], which nothing reads. If "
                                      "Keep is meant, correct the name."));
}

/// Each run renumbers, shuffles and saves; where nothing is new, not a byte of the file is.
TEST_F(BackupCommands, AreNotMadeAgainByRunsThatChangeNothing) {
    Set("RandomizePlaylist", "1");
    SetHostLine("KeepDays=14", "KeepDays=0");
    const auto copies = [this] {
        int count = 0;
        for (const auto& entry : fs::directory_iterator(Path("shelf")))
            if (entry.path().string().find("_Copy Dated_") != std::string::npos) ++count;
        return count;
    };
    const std::vector<std::string> run{"run", "--host", Path("shelf"), "--quiet",
                                       "--allow-removals"};
    ASSERT_EQ(CallProgram(run).status, 0) << Read("shelf/host.log");
    CallProgram(run);
    const int settled = copies();
    const std::string rows = Read("shelf/jukebox.mdb");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(CallProgram(run).status, 0);
    EXPECT_EQ(Read("shelf/jukebox.mdb"), rows);
    EXPECT_EQ(copies(), settled) << Backups().out;
}

TEST(AgeOfABackup, IsToldInTheUnitThatFits) {
    const DateTime made = MakeDateTime(2026, 1, 1, 4);
    EXPECT_EQ(AgeText(made, MakeDateTime(2026, 1, 1, 4, 0, 59)), "just now");
    EXPECT_EQ(AgeText(made, MakeDateTime(2026, 1, 1, 4, 1)), "1 minute");
    EXPECT_EQ(AgeText(made, MakeDateTime(2026, 1, 1, 7)), "3 hours");
    EXPECT_EQ(AgeText(made, MakeDateTime(2026, 1, 4, 3)), "2 days");
    EXPECT_EQ(AgeText(made, MakeDateTime(2027, 1, 1, 4)), "12 months");
    EXPECT_EQ(AgeText(made, MakeDateTime(2025, 1, 1)), "just now");
}

}  // namespace
}  // namespace quillon
