#include "backups/restore_backup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "backups/kept_backups.h"
#include "driver/settings_reader.h"
#include "tests/driver/form_fixture.h"

namespace quillon {
namespace {

using ::testing::HasSubstr;

/// A library, its backup of one night and what has become of it by the next day.
class RestoredBackup : public FormFixture {
  protected:
    RestoredBackup() {
        host.Set("Reconcile", "1");
        world.files.AddFile(R"(C:\Lists\b.pla)", "second", MakeDateTime(2026, 5, 5, 5));
        world.files.AddFile(R"(C:\Lists\Old\c.pla)", "third");
        before = Originals();
        Load();
        Spoil();
        after = Originals();
        world.clock.now = MakeDateTime(2026, 11, 16, 8);
        world.calls.Forget();
    }

    void Spoil() {
        world.files.AddFile(R"(D:\Data\cdj.mdb)", "bad rows");
        world.files.AddFile(R"(D:\Data\cdj.mdb.playlists)", "snapshot of the bad run");
        world.files.AddFile(R"(C:\Lists\a.pla)", "bad");
        world.files.DeleteFile(R"(C:\Lists\b.pla)");
        world.files.AddFile(R"(C:\Lists\bad.pla)", "bad");
        world.files.DeleteFolder(R"(C:\Lists\Old)");
        world.files.AddFile(R"(C:\Lists\New\d.pla)", "bad");
        world.files.AddFile(R"(C:\M3u\a.m3u)", "bad");
    }

    void RemoveCopiesOfNow() {
        for (const std::string& path : world.files.Everything()) {
            if (path.find("_Copy Dated_11162026_") == std::string::npos) continue;
            if (world.files.FolderExists(path)) world.files.DeleteFolder(path);
            if (world.files.FileExists(path)) world.files.DeleteFile(path);
        }
    }

    BackupMoment GoodBackup() { return Backups().back(); }

    /// Paths and contents of everything but copies.
    std::vector<std::string> Originals() const {
        std::vector<std::string> state;
        for (const std::string& path : world.files.Everything()) {
            if (path.find("_Copy Dated_") != std::string::npos) continue;
            state.push_back(path.ends_with('\\') ? path : path + '=' + world.files.Content(path));
        }
        return state;
    }

    std::vector<BackupMoment> Backups() {
        return FindBackups(world.files, run.settings, world.clock.Now());
    }

    std::vector<std::string> before, after;
};

TEST_F(RestoredBackup, IsTheDatabaseAndThePlaylistsOfThatMoment) {
    const Restored restored = RestoreBackup(run, Backups().front());
    EXPECT_TRUE(restored.succeeded);
    EXPECT_EQ(Originals(), before);
    EXPECT_EQ(world.files.GetFile(R"(C:\Lists\b.pla)").modified, MakeDateTime(2026, 5, 5, 5));
    EXPECT_EQ(host.log.back(),
              "Quillon: The backup 11152026_53855_AM was put back in its place. What was there "
              "before is the backup 11162026_80000_AM");
}

TEST_F(RestoredBackup, CanBeTakenBackInTheSameWay) {
    const Restored restored = RestoreBackup(run, Backups().front());
    world.clock.now = MakeDateTime(2026, 11, 16, 9);
    ASSERT_EQ(Backups().front().name, restored.copyOfNow);
    EXPECT_TRUE(RestoreBackup(run, Backups().front()).succeeded);
    EXPECT_EQ(Originals(), after);
}

TEST_F(RestoredBackup, LeavesWhatItHasNoCopyOfAsItIs) {
    world.files.DeleteFolder(R"(C:\Lists_Copy Dated_11152026_53855_AM_)");
    EXPECT_TRUE(RestoreBackup(run, Backups().front()).succeeded);
    EXPECT_EQ(world.files.Content(R"(D:\Data\cdj.mdb)"), "rows");
    EXPECT_EQ(world.files.Content(R"(C:\Lists\a.pla)"), "bad");
    EXPECT_FALSE(world.files.FileExists(R"(D:\Data\cdj.mdb.playlists)"));
}

TEST_F(RestoredBackup, OfPlaylistsAloneLeavesTheSnapshotOfTheDatabase) {
    world.files.DeleteFile(R"(D:\Data\cdj.mdb_Copy Dated_11152026_53855_AM_)");
    EXPECT_TRUE(RestoreBackup(run, Backups().front()).succeeded);
    EXPECT_EQ(world.files.Content(R"(D:\Data\cdj.mdb)"), "bad rows");
    EXPECT_EQ(world.files.Content(R"(C:\Lists\b.pla)"), "second");
    EXPECT_TRUE(world.files.FileExists(R"(D:\Data\cdj.mdb.playlists)"));
}

TEST_F(RestoredBackup, BringsASnapshotOfItsMomentAlong) {
    world.files.AddFile(R"(D:\Data\cdj.mdb.playlists_Copy Dated_11152026_53855_AM_)", "then");
    EXPECT_TRUE(RestoreBackup(run, Backups().front()).succeeded);
    EXPECT_EQ(world.files.Content(R"(D:\Data\cdj.mdb.playlists)"), "then");
}

/// Else songs that are back in the lists would come back into them a second time.
TEST_F(RestoredBackup, TakesWhatIsKnownOfMissingMusicFromItsMomentToo) {
    const std::string missing = R"(D:\Data\cdj.mdb.missing)";
    world.files.AddFile(missing, "now");
    const Restored restored = RestoreBackup(run, Backups().front());
    EXPECT_TRUE(restored.succeeded);
    EXPECT_FALSE(world.files.FileExists(missing));
    const auto backups = Backups();
    const auto ofNow = std::ranges::find(backups, restored.copyOfNow, &BackupMoment::name);
    ASSERT_NE(ofNow, backups.end());
    EXPECT_TRUE(RestoreBackup(run, *ofNow).succeeded);
    EXPECT_EQ(world.files.Content(missing), "now");
}

TEST_F(RestoredBackup, IsCompletedByEarlierCopiesThatHeldThen) {
    host.Set("Keep", "30");
    world.clock.now = MakeDateTime(2026, 11, 17, 4);
    Load();  // all that the bad run has done
    const std::vector<std::string> bad = Originals();
    world.files.AddFile(R"(C:\Lists\a.pla)", "worse");
    world.clock.now = MakeDateTime(2026, 11, 18, 4);
    Load();  // the playlists alone
    const std::vector<std::string> worse = Originals();
    world.files.AddFile(R"(D:\Data\cdj.mdb)", "worst");
    world.files.AddFile(R"(C:\Lists\a.pla)", "worst");
    const auto backups = Backups();
    ASSERT_EQ(backups.size(), 3U);
    EXPECT_EQ(backups[0].copies.size(), 1U);
    world.clock.now = MakeDateTime(2026, 11, 19, 4);
    EXPECT_TRUE(RestoreBackup(run, backups[0]).succeeded);
    EXPECT_EQ(Originals(), worse);
    EXPECT_TRUE(RestoreBackup(run, backups[1]).succeeded);
    EXPECT_EQ(Originals(), bad);
}

TEST_F(RestoredBackup, ChangesNothingWhereABackupOfNowCannotBeMade) {
    world.calls.Refuse(R"(CopyFolder C:\M3u -> C:\M3u_Copy Dated_11162026_80000_AM_)",
                       FailureNumber::DiskFull, "C:");
    const std::vector<std::string> all = world.files.Everything();
    const Restored restored = RestoreBackup(run, Backups().front());
    EXPECT_FALSE(restored.succeeded);
    EXPECT_EQ(restored.copyOfNow, "");
    EXPECT_EQ(Originals(), after);
    EXPECT_EQ(world.files.Everything(), all);
}

TEST_F(RestoredBackup, PutsAJournalOfWhatItReplacesAside) {
    world.files.AddFile(R"(D:\Data\cdj.mdb.journal)", "pages");
    EXPECT_TRUE(RestoreBackup(run, Backups().front()).succeeded);
    EXPECT_FALSE(world.files.FileExists(R"(D:\Data\cdj.mdb.journal)"));
    EXPECT_EQ(world.files.Content(R"(D:\Data\cdj.mdb.journal_Copy Dated_11162026_80000_AM_)"),
              "pages");
}

TEST_F(RestoredBackup, CutShortAnywhereHasLostNothingAndIsCompletedByTheNext) {
    ASSERT_TRUE(RestoreBackup(run, GoodBackup()).succeeded);
    const std::vector<std::string> changes =
        Calls({"Copy", "Move", "Delete", "Discard", "CreateText"});
    ASSERT_GT(changes.size(), 10U);
    for (const std::string& change : changes) {
        SCOPED_TRACE(change);
        RemoveCopiesOfNow();
        Spoil();
        world.calls.Refuse(change, FailureNumber::PathFileAccess, "");
        const Restored cutShort = RestoreBackup(run, GoodBackup());
        EXPECT_FALSE(cutShort.succeeded);
        if (Originals() != after) {
            // No run may start, and what was there is in the backup of now.
            EXPECT_EQ(UnfinishedRestore(world.files, run.settings.Nirvis_CDJ_DB),
                      "11152026_53855_AM");
            EXPECT_EQ(Load(), RunOutcome::NothingRan);
            EXPECT_THAT(host.log.back(), HasSubstr("quillon restore 11152026_53855_AM"));
            const BackupMoment ofNow = Backups().front();
            EXPECT_EQ(ofNow.name, cutShort.copyOfNow);
            EXPECT_EQ(ofNow.copies.size(), 4U);
        }
        world.calls.Allow(change);
        EXPECT_TRUE(RestoreBackup(run, GoodBackup()).succeeded);
        EXPECT_EQ(Originals(), before);
        EXPECT_EQ(UnfinishedRestore(world.files, run.settings.Nirvis_CDJ_DB), "");
    }
}

}  // namespace
}  // namespace quillon
