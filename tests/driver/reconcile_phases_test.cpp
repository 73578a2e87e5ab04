#include "driver/reconcile_phases.h"

#include <gmock/gmock.h>

#include "tests/driver/form_fixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

const std::string EmptyDifferences = "Execute DELETE * FROM SpinnerID3Differences";

class ReconcileMode : public FormFixture {
  protected:
    ReconcileMode() {
        SwitchOn({"Reconcile"});
        procedures.BuildORsRecordset = [](Run&) {};
        procedures.PopulateGenre = [](Run&) {};
    }

    /// Indicators and procedures in the order in which they were started.
    std::vector<std::string> Started() const { return Calls({"Phase", "Run"}); }

    std::vector<std::size_t> Visible() const {
        std::vector<std::size_t> visible;
        for (std::size_t i = 0; i < PhaseCount; ++i) {
            if (run.form.aPhase[i].visible) visible.push_back(i);
        }
        return visible;
    }
};

TEST_F(ReconcileMode, RunsItsPhasesInOrder) {
    SwitchOn({"ReconcileOption"});
    EXPECT_EQ(Load(), RunOutcome::Completed);
    EXPECT_THAT(
        Started(),
        ElementsAre("Phase 0", "Run CapturePlaylists", "Phase 1", "Run RemoveDuplicates", "Phase 2",
                    "Run VerifyID3Tags", "Phase 3", "Run RefreshDatabase", "Phase 4",
                    "Run PopulateSpinnerTracks", "Phase 5", "Phase 6", "Run PopulateSpinnerArtist",
                    "Phase 7", "Run RefreshPlaylist", "Phase 8", "Run CreateNewPlaylists",
                    "Phase 9", "Run RefreshAlbumCovers", "Run OutputReconcileTable"));
}

TEST_F(ReconcileMode, MakesItsBackupsBeforeItTouchesAnything) {
    host.Set("ID3Reconcile", "0");
    Load();
    EXPECT_THAT(Calls({"CopyFile", "CopyFolder", "Execute", "Phase 0"}),
                ElementsAre(DatabaseBackup()[0], ListsBackup()[0], M3uBackup()[0], EmptyDifferences,
                            "Phase 0"));
}

/// Rows that are found again stay where they are.
TEST_F(ReconcileMode, LeavesOldDifferencesToTheComparisonOfTags) {
    Load();
    EXPECT_THAT(Calls({"Execute"}), IsEmpty());
}

TEST_F(ReconcileMode, EmptiesTheDifferencesWhereTheComparisonOfTagsIsNotReached) {
    procedures.RemoveDuplicates = [](Run& of) { of.AbortRequested = true; };
    EXPECT_EQ(Load(), RunOutcome::Aborted);
    EXPECT_THAT(Calls({"Execute", "Run VerifyID3Tags"}), ElementsAre(EmptyDifferences));
}

TEST_F(ReconcileMode, ShowsEveryIndicatorAndTheLabel) {
    Load();
    EXPECT_EQ(Visible().size(), PhaseCount);
    EXPECT_TRUE(run.form.aLblReconcile);
}

TEST_F(ReconcileMode, HidesTheId3IndicatorAndSkipsThePhaseWithoutId3Reconcile) {
    host.Set("ID3Reconcile", "0");
    Load();
    EXPECT_EQ(Visible().size(), PhaseCount - 1);
    EXPECT_FALSE(run.form.aPhase[2].visible);
    EXPECT_THAT(Calls({"Run VerifyID3Tags", "Phase 2"}), IsEmpty());
}

TEST_F(ReconcileMode, LightsOneIndicatorAtATime) {
    int mostSelected = 0;
    world.window.onEvents = [&](const FormState& state) {
        int selected = 0;
        for (const PhaseIndicator& indicator : state.aPhase)
            selected += indicator.selected;
        mostSelected = std::max(mostSelected, selected);
    };
    Load();
    EXPECT_EQ(mostSelected, 1);
    EXPECT_TRUE(run.form.aPhase[9].selected);
}

TEST_F(ReconcileMode, LightsTheCorrelationAndRunsNothing) {
    Load();
    const std::vector<std::string> calls = Calls({"Phase", "Run", "Execute", "Copy", "WriteLog"});
    const auto at = std::find(calls.begin(), calls.end(), "Phase 5");
    ASSERT_NE(at, calls.end());
    EXPECT_EQ(*(at + 1), "Phase 6");
}

TEST_F(ReconcileMode, OutputsTheReconciliationFileOnlyWhenAskedTo) {
    Load();
    EXPECT_THAT(Calls({"Run OutputReconcileTable", "Item 1. Output"}), IsEmpty());
    SwitchOn({"ReconcileOption"});
    Load();
    EXPECT_THAT(Calls({"Run OutputReconcileTable", "Item 1. Output"}),
                ElementsAre("Item 1. Output Reconcilliation File", "Run OutputReconcileTable"));
    EXPECT_EQ(run.form.aItem, "1. Output Reconcilliation File");
}

TEST_F(ReconcileMode, BuildsTheWorkingSetAnewBeforeNewPlaylists) {
    Note(&Procedures::BuildORsRecordset, "BuildORsRecordset");
    Load();
    EXPECT_THAT(Calls({"Run BuildORs", "Phase 8", "Run CreateNew"}),
                ElementsAre("Run BuildORsRecordset", "Phase 8", "Run BuildORsRecordset",
                            "Run CreateNewPlaylists"));
}

// Playlists only.

TEST_F(ReconcileMode, IsLimitedToThePlaylistPhases) {
    SwitchOn({"PlaylistsOnly", "ReconcileOption", "ID3Reconcile"});
    EXPECT_EQ(Load(), RunOutcome::Completed);
    EXPECT_THAT(Started(), ElementsAre("Phase 0", "Run CapturePlaylists", "Phase 7",
                                       "Run RefreshPlaylist", "Phase 8", "Run CreateNewPlaylists"));
    EXPECT_THAT(Visible(), ElementsAre(0, 7, 8));
    EXPECT_TRUE(run.form.aLblReconcile);
    EXPECT_FALSE(run.settings.ID3Reconcile);
    EXPECT_THAT(Calls({"Execute"}), IsEmpty());
    EXPECT_EQ(Calls({"CopyFile", "CopyFolder"}).size(), 3U);
}

TEST_F(ReconcileMode, RunsForPlaylistsOnlyAlthoughReconcileIsOff) {
    host.Set("Reconcile", "0");
    SwitchOn({"PlaylistsOnly"});
    EXPECT_EQ(Load(), RunOutcome::Completed);
    EXPECT_THAT(Calls({"Run"}), ElementsAre("Run CapturePlaylists", "Run RefreshPlaylist",
                                            "Run CreateNewPlaylists"));
}

TEST_F(ReconcileMode, RunsForPlaylistsOnlyWithoutALibraryRoot) {
    host.Set("LibraryRoot", "");
    SwitchOn({"PlaylistsOnly"});
    Load();
    EXPECT_THAT(Calls({"Phase"}), ElementsAre("Phase 0", "Phase 7", "Phase 8"));
}

// Without a library.

TEST_F(ReconcileMode, OnlyWritesTheReconciliationFileWithoutALibraryRoot) {
    host.Set("LibraryRoot", "");
    SwitchOn({"ReconcileOption"});
    EXPECT_EQ(Load(), RunOutcome::Completed);
    EXPECT_THAT(Started(), ElementsAre("Run OutputReconcileTable"));
    EXPECT_THAT(Calls({"Execute"}), ElementsAre(EmptyDifferences));
    EXPECT_EQ(Calls({"CopyFile", "CopyFolder"}).size(), 3U);
    EXPECT_EQ(Visible().size(), PhaseCount);
    EXPECT_TRUE(run.form.aLblReconcile);
}

TEST_F(ReconcileMode, DoesNothingMoreWithoutALibraryRootAndReconcileOption) {
    host.Set("LibraryRoot", "");
    Load();
    EXPECT_THAT(Started(), IsEmpty());
    EXPECT_THAT(Calls({"Execute"}), ElementsAre(EmptyDifferences));
}

TEST_F(ReconcileMode, RunsItsPhasesAlthoughTheLibraryRootIsNotThere) {
    host.Set("LibraryRoot", R"(X:\Gone)");
    std::size_t folders = 1;
    Note(&Procedures::RefreshDatabase, "RefreshDatabase",
         [&](Run& context) { folders = context.LibraryFolders.size(); });
    EXPECT_EQ(Load(), RunOutcome::Completed);
    EXPECT_EQ(folders, 0U);
    EXPECT_EQ(Calls({"Phase"}).size(), 10U);
}

// Failures.

TEST_F(ReconcileMode, GoesOnBehindAPhaseThatFails) {
    Note(&Procedures::RemoveDuplicates, "RemoveDuplicates",
         [](Run&) { throw std::runtime_error("Object required"); });
    EXPECT_EQ(Load(), RunOutcome::Completed);
    EXPECT_THAT(host.log, ElementsAre("Quillon: Update Database Error: Line 0 Object required"));
    EXPECT_THAT(Calls({"Run VerifyID3Tags", "Run RefreshAlbumCovers"}),
                ElementsAre("Run VerifyID3Tags", "Run RefreshAlbumCovers"));
    EXPECT_EQ(run.form.aError, "Update Database Error:");
    EXPECT_EQ(run.counts.errors, 1U);
}

TEST_F(ReconcileMode, GoesOnWhenTheDifferencesCannotBeEmptied) {
    host.Set("ID3Reconcile", "0");
    world.calls.Refuse(EmptyDifferences, FailureNumber::Database, "no such table");
    EXPECT_EQ(Load(), RunOutcome::Completed);
    EXPECT_EQ(host.log.size(), 1U);
    EXPECT_TRUE(host.log[0].starts_with("Quillon: Update Database Error: Line 0 ")) << host.log[0];
    EXPECT_EQ(Calls({"Phase"}).size(), 9U);
}

TEST_F(ReconcileMode, StopsAtABackupThatFailsBeforeAnythingChanges) {
    for (const std::string& backup : {DatabaseBackup()[0], ListsBackup()[0], M3uBackup()[0]}) {
        RemoveBackups();
        run.counts = {};
        world.calls.Refuse(backup, FailureNumber::DiskFull, "the disk");
        EXPECT_EQ(Load(), RunOutcome::NothingRan);
        EXPECT_EQ(run.counts.errors, 1U);
        EXPECT_THAT(Calls({"Phase", "Run", "Execute"}), IsEmpty()) << backup;
        world.calls.Allow(backup);
    }
}

TEST_F(ReconcileMode, DoesNotStartWhereItCannotKeepWhatItKnows) {
    for (const std::string ending : {".playlists"}) {
        const std::string path = R"(D:\Data\cdj.mdb)" + ending;
        world.calls.Forget();
        host.log.clear();
        world.calls.Refuse("CreateText " + path, FailureNumber::PermissionDenied,
                           path + " (this is a symbolic link and no file)");
        EXPECT_EQ(Load(), RunOutcome::NothingRan);
        EXPECT_THAT(
            host.log,
            ElementsAre("Quillon: QuillonShelfkeeper Main Line 0 Permission denied: " + path +
                        " (this is a symbolic link and no file); nothing was changed. A "
                        "run keeps a file of its own there: remove what has that name, or "
                        "give this account the right to write there, and run again"));
        EXPECT_THAT(Calls({"Phase", "Run", "Execute", "Copy"}), IsEmpty());
        world.calls.Allow("CreateText " + path);
    }
}

TEST_F(ReconcileMode, ChangesNothingWhenAbortComesDuringTheBackups) {
    world.window.PressAbortWhen(
        [](const FormState& state) { return state.aItem.starts_with("Making Backup"); });
    EXPECT_EQ(Load(), RunOutcome::Aborted);
    EXPECT_THAT(Calls({"Phase", "Run", "Execute"}), IsEmpty());
}

TEST_F(ReconcileMode, MakesTheDatabaseDurableBehindEveryPhase) {
    Load();
    EXPECT_THAT(Calls({"Run Re", "Flush"}),
                ElementsAre("Flush", "Run RemoveDuplicates", "Flush", "Flush",
                            "Run RefreshDatabase", "Flush", "Flush", "Flush", "Run RefreshPlaylist",
                            "Flush", "Flush", "Flush", "Run RefreshAlbumCovers", "Flush", "Flush"));
}

// Abort.

TEST_F(ReconcileMode, ReturnsBeforeThePhaseWhoseStartNoticesAbort) {
    const std::vector<std::string> work = {"Run CapturePlaylists",      "Run RemoveDuplicates",
                                           "Run VerifyID3Tags",         "Run RefreshDatabase",
                                           "Run PopulateSpinnerTracks", "",
                                           "Run PopulateSpinnerArtist", "Run RefreshPlaylist",
                                           "Run CreateNewPlaylists",    "Run RefreshAlbumCovers"};
    for (std::size_t phase = 0; phase < work.size(); ++phase) {
        world.calls.Forget();
        world.window.abortPressed = false;
        world.window.last = {};
        run.AbortRequested = false;
        run.form = {};
        world.window.PressAbortWhen(fakes::PhaseIsSelected(phase));
        EXPECT_EQ(Load(), RunOutcome::Aborted);
        EXPECT_EQ(Calls({"Phase"}).back(), "Phase " + std::to_string(phase));
        const std::vector<std::string> ran = Calls({"Run"});
        const auto expected = std::count_if(work.begin(), work.begin() + static_cast<int>(phase),
                                            [](const std::string& name) { return !name.empty(); });
        EXPECT_EQ(static_cast<long>(ran.size()), expected) << phase;
        EXPECT_EQ(world.calls.Made().back(), "Unload");
    }
}

TEST_F(ReconcileMode, LetsThePhaseThatIsRunningEndBeforeItReturns) {
    Note(&Procedures::RefreshDatabase, "RefreshDatabase", [this](Run& context) {
        world.window.abortPressed = true;
        context.ProcessEvents();
        world.calls.Note("RefreshDatabase ends");
    });
    EXPECT_EQ(Load(), RunOutcome::Aborted);
    EXPECT_THAT(Calls({"Run RefreshDatabase", "RefreshDatabase ends", "Run Populate", "Unload"}),
                ElementsAre("Run RefreshDatabase", "RefreshDatabase ends", "Unload"));
}

TEST_F(ReconcileMode, DoesNotOutputTheReconciliationFileAfterAbort) {
    SwitchOn({"ReconcileOption"});
    world.window.PressAbortWhen(
        [](const FormState& state) { return state.aItem.starts_with("1. Output"); });
    EXPECT_EQ(Load(), RunOutcome::Aborted);
    EXPECT_THAT(Calls({"Run OutputReconcileTable"}), IsEmpty());
}

TEST_F(ReconcileMode, EndsBeforeItChangesWhatItCouldNotMakeGood) {
    Note(&Procedures::CapturePlaylists, "CapturePlaylists",
         [](Run& disturbed) { disturbed.isSecured = false; });
    EXPECT_EQ(Load(), RunOutcome::Completed);
    EXPECT_EQ(Calls({"Run"}).back(), "Run CapturePlaylists");
    EXPECT_THAT(
        host.log,
        ElementsAre("Quillon: The run ends here, before it changes the library: what is needed to "
                    "recover from an interruption cannot be saved. The next run goes on"));
}

}  // namespace
}  // namespace quillon
