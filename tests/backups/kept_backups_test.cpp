#include "backups/kept_backups.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "backups/backup_list.h"
#include "backups/backups.h"
#include "driver/settings_reader.h"
#include "tests/driver/form_fixture.h"

namespace quillon {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

/// Nights of a reconciliation whose playlists phase does what a test says.
class KeptBackups : public FormFixture {
  protected:
    KeptBackups() {
        host.Set("Reconcile", "1");
        SetKeep("30");
    }

    void SetKeep(const std::string& text) { host.Set("Keep", text); }

    void OfTheNight(int day) { world.clock.now = DateTime{MakeDateTime(2026, 1, 1, 4).days + day}; }

    /// Runs of `days` nights, the last of which the clock shows afterwards.
    void RunNights(int days) {
        for (; days > 0; --days) {
            OfTheNight(night_++);
            EXPECT_EQ(Load(), RunOutcome::Completed);
        }
    }

    std::vector<std::string> CopiesOf(const std::string& original) const {
        std::vector<std::string> copies;
        for (const std::string& path : world.files.Everything()) {
            const bool isFolder = path.ends_with('\\');
            if (path.starts_with(original + "_Copy Dated_") &&
                (isFolder || path.find('\\', original.size()) == std::string::npos))
                copies.push_back(path.substr(original.size()));
        }
        return copies;
    }
    std::vector<std::string> CopiesOfDatabase() const { return CopiesOf(R"(D:\Data\cdj.mdb)"); }
    std::vector<std::string> CopiesOfLists() const { return CopiesOf(R"(C:\Lists)"); }

    int night_ = 0;
};

TEST_F(KeptBackups, OfAYearOfNightsInWhichNothingChangesAreOneCopy) {
    RunNights(366);
    EXPECT_THAT(CopiesOfDatabase(), ElementsAre("_Copy Dated_112026_40000_AM_"));
    EXPECT_THAT(CopiesOfLists(), ElementsAre("_Copy Dated_112026_40000_AM_\\"));
    EXPECT_THAT(CopiesOf(R"(C:\M3u)"), ElementsAre("_Copy Dated_112026_40000_AM_\\"));
    EXPECT_THAT(CopiesOf(R"(D:\Data\cdj.mdb.backup)"), IsEmpty());
    EXPECT_THAT(host.log, IsEmpty());
}

TEST_F(KeptBackups, AreReadAgainOnlyWhereSizesAreEqual) {
    RunNights(1);
    world.files.AddFile(R"(D:\Data\cdj.mdb)", "more rows");
    world.files.AddFile(R"(C:\Lists\a.pla)", "longer");
    world.calls.Forget();
    RunNights(1);
    EXPECT_THAT(Calls({"OpenBinary"}), Each(HasSubstr(R"(C:\M3u)")));
    EXPECT_EQ(CopiesOfDatabase().size(), 2U);
    EXPECT_EQ(CopiesOfLists().size(), 2U);
}

TEST_F(KeptBackups, AreMadeOfContentThatDiffersInOneByte) {
    RunNights(1);
    world.files.AddFile(R"(D:\Data\cdj.mdb)", "rowz");
    world.files.AddFile(R"(C:\Lists\a.pla)", "");
    world.files.AddFile(R"(C:\M3u\b.m3u)", "");
    RunNights(1);
    EXPECT_EQ(CopiesOfDatabase().size(), 2U);
    EXPECT_EQ(CopiesOfLists().size(), 1U);
    EXPECT_EQ(CopiesOf(R"(C:\M3u)").size(), 2U);
}

TEST_F(KeptBackups, NameTheEarlierCopiesThatBelongToTheirMoment) {
    RunNights(2);
    world.files.AddFile(R"(D:\Data\cdj.mdb)", "other");
    RunNights(1);
    const auto backups = FindBackups(world.files, run.settings, world.clock.Now());
    ASSERT_EQ(backups.size(), 2U);
    EXPECT_EQ(backups[0].name, "132026_40000_AM");
    EXPECT_TRUE(backups[0].isWhole);
    ASSERT_NE(backups[0].CopyOf(BackupPart::Database), nullptr);
    EXPECT_EQ(backups[0].CopyOf(BackupPart::Database)->mark, "132026_40000_AM");
    ASSERT_NE(backups[0].CopyOf(BackupPart::PlayListPath), nullptr);
    EXPECT_EQ(backups[0].CopyOf(BackupPart::PlayListPath)->mark, "112026_40000_AM");
    EXPECT_EQ(backups[0].shared.size(), 2U);
    world.files.DeleteFolder(R"(C:\Lists_Copy Dated_112026_40000_AM_)");
    EXPECT_FALSE(FindBackups(world.files, run.settings, world.clock.Now())[0].isWhole);
}

TEST_F(KeptBackups, StayAllWithoutTheSetting) {
    for (const char* const text : {"", "0", "-3", "2.5", "few"}) {
        SetKeep(text);
        world.files.AddFile(R"(C:\Lists_Copy Dated_112020_40000_AM_\a.pla)");
        world.calls.Forget();
        RunNights(1);
        EXPECT_THAT(Calls({"OpenBinary", "MoveFolder", "Delete", "Discard"}), IsEmpty()) << text;
        EXPECT_TRUE(world.files.FolderExists(R"(C:\Lists_Copy Dated_112020_40000_AM_)"));
    }
    EXPECT_EQ(CopiesOfDatabase().size(), 5U);
    EXPECT_EQ(CopiesOfLists().size(), 6U);
}

TEST_F(KeptBackups, AreTheLastThirtyAndThenOneAMonthForAYear) {
    Note(&Procedures::RefreshPlaylist, "RefreshPlaylist", [this](Run&) {
        const std::string night = "night " + std::to_string(night_);
        world.files.AddFile(R"(D:\Data\cdj.mdb)", "rows of " + night, world.clock.now);
        world.files.AddFile(R"(C:\Lists\a.pla)", "list of " + night, world.clock.now);
    });
    RunNights(460);
    // The last night is 5 April 2027: 30 nights go back to 7 March, and a year to April 2026. One
    // folder has not changed since the first night, whose backup stays for that.
    EXPECT_EQ(CopiesOf(R"(C:\M3u)").size(), 1U);
    EXPECT_EQ(CopiesOfDatabase().size(), 30U + 12U + 1U);
    EXPECT_EQ(CopiesOfLists().size(), 30U + 12U + 1U);
    const auto backups = FindBackups(world.files, run.settings, world.clock.Now());
    ASSERT_EQ(backups.size(), 30U + 12U + 1U);
    EXPECT_EQ(backups.front().name, "452027_40000_AM");
    EXPECT_EQ(backups[29].name, "372027_40000_AM");
    EXPECT_EQ(backups[30].name, "362027_40000_AM");
    EXPECT_EQ(backups[31].name, "2282027_40000_AM");
    EXPECT_EQ(backups[33].name, "12312026_40000_AM");
    EXPECT_EQ(backups[41].name, "4302026_40000_AM");
    EXPECT_EQ(backups.back().name, "112026_40000_AM");
    for (const BackupMoment& backup : backups)
        EXPECT_TRUE(backup.isWhole) << backup.name;
}

TEST_F(KeptBackups, AreRemovedOnlyAfterARunWithoutErrors) {
    SetKeep("1");
    const std::string old = R"(D:\Data\cdj.mdb_Copy Dated_112020_40000_AM_)";
    world.files.AddFile(old, "ancient");
    Note(&Procedures::RefreshPlaylist, "RefreshPlaylist",
         [](Run&) { throw Failure(FailureNumber::DiskFull, "C:"); });
    RunNights(1);
    EXPECT_TRUE(world.files.FileExists(old));
    Note(&Procedures::RefreshPlaylist, "RefreshPlaylist",
         [](Run& context) { context.AbortRequested = true; });
    EXPECT_EQ(Load(), RunOutcome::Aborted);
    EXPECT_TRUE(world.files.FileExists(old));
    run.AbortRequested = false;
    run.counts.errors = 0;
    host.log.clear();
    Note(&Procedures::RefreshPlaylist, "RefreshPlaylist");
    RunNights(1);
    EXPECT_FALSE(world.files.FileExists(old));
    EXPECT_EQ(CopiesOfDatabase().size(), 1U);
    EXPECT_THAT(host.log,
                ElementsAre("Quillon: 1 old backup was removed, as [Backups] in host.ini says"));
}

TEST_F(KeptBackups, LeaveWhatIsNotTheirsAlone) {
    SetKeep("1");
    const std::vector<std::string> foreign = {
        R"(D:\Data\cdj.mdb_Copy Dated_mine_)",
        R"(D:\Data\cdj.mdb_Copy Dated_112020_40000_AM_.txt)",
        R"(D:\Data\cdj.mdb_Copy Dated_112020_40000_AM_\a folder.txt)",
        R"(D:\Data\other.mdb_Copy Dated_112020_40000_AM_)",
        R"(C:\Lists_Copy Dated_132020_40000_AM_)",
        R"(C:\Lists_Copy Dated_112020_40000_AM_ keep\a.pla)"};
    for (const std::string& path : foreign)
        world.files.AddFile(path, "mine");
    world.files.AddFile(R"(C:\Lists_Copy Dated_112020_40000_AM_\a.pla)", "old");
    RunNights(1);
    for (const std::string& path : foreign)
        EXPECT_TRUE(world.files.FileExists(path)) << path;
    EXPECT_THAT(world.files.Everything(),
                Not(Contains(R"(C:\Lists_Copy Dated_112020_40000_AM_\)")));
}

TEST_F(KeptBackups, KeepTheNewestHoweverOldItIs) {
    SetKeep("1");
    world.clock.now = MakeDateTime(2010, 5, 5, 4);
    Load();
    world.clock.now = MakeDateTime(2026, 5, 5, 4);
    Load();
    EXPECT_THAT(CopiesOfDatabase(), ElementsAre("_Copy Dated_552010_40000_AM_"));
}

TEST_F(KeptBackups, StayWhereTheirNameCouldMeanAMonthInWhichTheyAreWanted) {
    SetKeep("1");
    const std::string copy = R"(D:\Data\cdj.mdb_Copy Dated_)";
    const DateTime longAgo = MakeDateTime(2025, 1, 1);
    for (const char* const mark : {"10252026", "1122026", "1132026"})
        world.files.AddFile(copy + mark + "_40000_AM_", mark, longAgo);
    world.files.AddFile(R"(D:\Data\cdj.mdb)", "new", longAgo);
    world.clock.now = MakeDateTime(2026, 11, 4, 4);
    Load();
    EXPECT_THAT(CopiesOfDatabase(), UnorderedElementsAre("_Copy Dated_10252026_40000_AM_",
                                                         "_Copy Dated_1132026_40000_AM_",
                                                         "_Copy Dated_1142026_40000_AM_"));
}

TEST_F(KeptBackups, TellTheMonthByTheAgeOfWhatIsInThem) {
    world.files.AddFile(R"(D:\Data\cdj.mdb)", "rows", MakeDateTime(2026, 10, 1));
    world.clock.now = MakeDateTime(2026, 11, 1, 4);
    Load();
    const auto backups = FindBackups(world.files, run.settings, world.clock.Now());
    ASSERT_EQ(backups.size(), 1U);
    EXPECT_EQ(backups[0].copies.size(), 3U);
    EXPECT_EQ(backups[0].made, MakeDateTime(2026, 11, 1, 4));
    EXPECT_EQ(FindBackups(world.files, run.settings, MakeDateTime(2026, 10, 1))[0].made,
              MakeDateTime(2026, 1, 11, 4));
}

TEST_F(KeptBackups, OfOneRunAreOneMomentAlsoWhereSecondsPassBetween) {
    SetKeep("");
    const std::string data = R"(D:\Data\cdj.mdb_Copy Dated_)", lists = R"(C:\Lists_Copy Dated_)";
    world.files.AddFile(data + "5102026_40000_AM_");
    world.files.AddFile(lists + R"(5102026_40004_AM_\a.pla)");
    world.files.AddFile(R"(C:\M3u_Copy Dated_5102026_40130_AM_\a.m3u)");
    world.files.AddFile(data + "5102026_40200_AM_");  // another run
    world.files.AddFile(lists + R"(5102026_41000_AM_\a.pla)");
    world.clock.now = MakeDateTime(2026, 5, 11);
    run.settings = ReadSettings(host);
    const auto backups = FindBackups(world.files, run.settings, world.clock.Now());
    ASSERT_EQ(backups.size(), 3U);
    EXPECT_EQ(backups[2].name, "5102026_40000_AM");
    EXPECT_EQ(backups[2].copies.size(), 3U);
    EXPECT_EQ(backups[1].name, "5102026_40200_AM");
    EXPECT_EQ(backups[1].copies.size(), 1U);
    EXPECT_EQ(backups[0].copies.size(), 1U);
}

TEST_F(KeptBackups, ThatCannotBeRemovedStayWithALineInTheLog) {
    SetKeep("1");
    const std::string old = R"(C:\Lists_Copy Dated_112020_40000_AM_)";
    world.files.AddFile(old + R"(\a.pla)", "old");
    world.calls.Refuse("MoveFolder " + old + R"( -> C:\.quillon-0-0.tmp)",
                       FailureNumber::PermissionDenied, old);
    RunNights(1);
    EXPECT_TRUE(world.files.FolderExists(old));
    EXPECT_THAT(host.log, ElementsAre("Quillon: RemoveOldBackups Line 0 Permission denied: " + old +
                                      "; the old backup stays. Remove it yourself, or give this "
                                      "account the right to"));
}

TEST_F(KeptBackups, AreTakenBackTogetherWhereOneCannotBeMade) {
    RunNights(1);
    world.files.AddFile(R"(D:\Data\cdj.mdb)", "new");
    world.files.AddFile(R"(C:\M3u\a.m3u)", "new");
    const std::vector<std::string> before = world.files.Everything();
    world.calls.Refuse(R"(CopyFolder C:\M3u -> C:\M3u_Copy Dated_122026_40000_AM_)",
                       FailureNumber::DiskFull, "C:");
    OfTheNight(1);
    EXPECT_EQ(Load(), RunOutcome::NothingRan);
    EXPECT_EQ(world.files.Everything(), before);
}

TEST(BackupsThatStay, AreAsManyOfTheNewestAsAskedFor) {
    std::vector<DateTime> times;
    for (int year = 2000; year < 2010; ++year)
        times.push_back(MakeDateTime(year, 6, 1));
    const std::vector<bool> stays = BackupsThatStay(times, 3, MakeDateTime(2026, 1, 1));
    EXPECT_EQ(std::ranges::count(stays, true), 3);
    EXPECT_TRUE(stays[9] && stays[8] && stays[7]);
    EXPECT_THAT(BackupsThatStay({}, 3, MakeDateTime(2026, 1, 1)), IsEmpty());
}

TEST(BackupsThatStay, AreNotFewerBecauseTheClockWasPutBack) {
    std::vector<DateTime> times{MakeDateTime(2038, 1, 1), MakeDateTime(2038, 1, 2)};
    for (int day = 22; day < 26; ++day)
        times.push_back(MakeDateTime(2026, 10, day));
    // Two of the newest, the last other one of the month, and those of later.
    EXPECT_THAT(BackupsThatStay(times, 2, MakeDateTime(2026, 10, 26)),
                testing::ElementsAre(true, true, false, true, true, true));
}

}  // namespace
}  // namespace quillon
