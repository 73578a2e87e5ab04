#include "driver/modes.h"

#include <array>
#include <gmock/gmock.h>
#include <utility>

#include "tests/driver/form_fixture.h"

namespace quillon {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

struct ModeCase {
    std::string key;
    std::size_t indicator;
    bool needsLibrary;
    std::vector<std::string> backups;
    std::string work;
};

class ModesTest : public FormFixture {
  protected:
    static std::vector<ModeCase> Cases() {
        return {
            {"ID3Update", 14, true, DatabaseBackup(), "UpdateDatabaseFromID3"},
            {"AddFiles", 16, true, {}, "AddFilesToLibrary"},
            {"ID3Write", 13, true, {}, "WriteID3"},
            {"AlbumPicker", 10, false, {}, "BuildAlbumPicker"},
            {"PlaToM3u", 11, false, M3uBackup(), "ConvertPlaToM3u"},
            {"MakeRemote", 15, false, All(), "MakeRemote"},
            {"M3uToPla", 12, false, ListsBackup(), "ConvertM3uToPla"},
        };
    }

    static std::vector<std::string> All() {
        return {DatabaseBackup()[0], ListsBackup()[0], M3uBackup()[0]};
    }

    /// What a run of this mode does from its indicator on.
    static std::vector<std::string> Expected(const ModeCase& mode) {
        std::vector<std::string> calls = {"Phase " + std::to_string(mode.indicator)};
        calls.insert(calls.end(), mode.backups.begin(), mode.backups.end());
        calls.push_back("Run " + mode.work);
        return calls;
    }

    /// Runs with these settings on, without the two steps of every start-up.
    std::vector<std::string> CallsWith(const std::vector<std::string>& keys) {
        for (const ModeCase& mode : Cases())
            host.Set(mode.key, "0");
        SwitchOn(keys);
        procedures.BuildORsRecordset = [](Run&) {};
        procedures.PopulateGenre = [](Run&) {};
        RemoveBackups();
        run.form = {};
        world.window.last = {};
        outcome = Load();
        return Calls({"Phase", "CopyFile", "CopyFolder", "Run"});
    }

    RunOutcome outcome = RunOutcome::NothingRan;
};

TEST_F(ModesTest, EachShowsItsIndicatorMakesItsBackupsAndDoesItsWork) {
    for (const ModeCase& mode : Cases()) {
        EXPECT_THAT(CallsWith({mode.key}), ElementsAreArray(Expected(mode))) << mode.key;
        EXPECT_EQ(outcome, RunOutcome::Completed);
    }
}

TEST_F(ModesTest, ShowsNoOtherIndicator) {
    for (const ModeCase& mode : Cases()) {
        CallsWith({mode.key});
        for (std::size_t i = 0; i < PhaseCount; ++i) {
            EXPECT_EQ(run.form.aPhase[i].visible, i == mode.indicator) << mode.key << " " << i;
            EXPECT_EQ(run.form.aPhase[i].selected, i == mode.indicator) << mode.key << " " << i;
        }
        EXPECT_FALSE(run.form.aLblReconcile);
    }
}

TEST_F(ModesTest, TheFirstThatAppliesRunsAlone) {
    const std::vector<ModeCase> cases = Cases();
    std::vector<std::string> keys = {"Reconcile"};
    for (auto mode = cases.rbegin(); mode != cases.rend(); ++mode) {
        keys.push_back(mode->key);
        EXPECT_THAT(CallsWith(keys), ElementsAreArray(Expected(*mode))) << mode->key;
    }
}

TEST_F(ModesTest, OnlyTheId3UpdateRunsOfThreeThatAreOn) {
    EXPECT_THAT(CallsWith({"ID3Update", "AddFiles", "AlbumPicker"}),
                ElementsAreArray(Expected(Cases()[0])));
}

TEST_F(ModesTest, FolderModesAreIgnoredWithoutALibraryRoot) {
    host.Set("LibraryRoot", "");
    EXPECT_THAT(CallsWith({"ID3Update", "AddFiles", "ID3Write", "PlaToM3u"}),
                ElementsAreArray(Expected(Cases()[4])));
    for (const ModeCase& mode : Cases()) {
        if (mode.needsLibrary) {
            EXPECT_THAT(CallsWith({mode.key}), IsEmpty()) << mode.key;
            EXPECT_EQ(outcome, RunOutcome::NothingRan);
        } else {
            EXPECT_THAT(CallsWith({mode.key}), ElementsAreArray(Expected(mode))) << mode.key;
        }
    }
}

TEST_F(ModesTest, AndPhasesAllHaveTheirWork) {
    const Procedures available = AvailableProcedures();
    for (const auto& [member, name] : ProcedureNames())
        EXPECT_TRUE(available.*member) << name;
}

TEST_F(ModesTest, AFailureInTheWorkIsLoggedAndTheRunEnds) {
    Note(&Procedures::MakeRemote, "MakeRemote",
         [](Run&) { throw std::runtime_error("Object required"); });
    CallsWith({"MakeRemote"});
    EXPECT_EQ(outcome, RunOutcome::Completed);
    EXPECT_THAT(host.log, ElementsAre("Quillon: Update Database Error: Line 0 Object required"));
    EXPECT_EQ(run.form.aError, "Update Database Error:");
    EXPECT_EQ(run.counts.errors, 1U);
}

TEST_F(ModesTest, AbortAtTheStartLeavesEverythingUntouched) {
    world.window.PressAbortWhen(fakes::PhaseIsSelected(15));
    EXPECT_THAT(CallsWith({"MakeRemote"}), ElementsAre("Phase 15"));
    EXPECT_EQ(outcome, RunOutcome::Aborted);
}

TEST_F(ModesTest, AbortDuringTheBackupsKeepsTheWorkFromStarting) {
    world.window.PressAbortWhen(
        [](const FormState& state) { return state.aItem.starts_with("Making Backup"); });
    const std::vector<std::string> calls = CallsWith({"MakeRemote"});
    EXPECT_EQ(calls.back(), M3uBackup()[0]);
    EXPECT_EQ(outcome, RunOutcome::Aborted);
}

TEST_F(ModesTest, ABackupThatFailsStopsTheRunBeforeAnythingChanges) {
    for (const ModeCase& mode : Cases()) {
        for (const std::string& backup : mode.backups) {
            run.counts = {};
            world.calls.Refuse(backup, FailureNumber::DiskFull, "the disk");
            const std::vector<std::string> calls = CallsWith({mode.key});
            EXPECT_EQ(calls.back(), backup) << "nothing comes behind it";
            EXPECT_EQ(outcome, RunOutcome::NothingRan);
            EXPECT_EQ(run.counts.errors, 1U);
            EXPECT_THAT(Calls({"Execute", "Run", "CreateText", "Move"}), IsEmpty());
            EXPECT_THAT(world.files.Everything(), Each(Not(HasSubstr("_Copy Dated_"))));
            world.calls.Allow(backup);
        }
    }
}

TEST_F(ModesTest, AbortDuringTheWorkIsTheRunsOutcome) {
    Note(&Procedures::MakeRemote, "MakeRemote", [this](Run& context) {
        world.window.abortPressed = true;
        context.ProcessEvents();
    });
    CallsWith({"MakeRemote"});
    EXPECT_EQ(outcome, RunOutcome::Aborted);
}

TEST_F(ModesTest, MakeTheirBackupsBeforeAnythingWritesToTheDatabase) {
    SwitchOn({"ID3Update"});
    Load();
    EXPECT_THAT(Calls({"OpenTable", "Flush", "CopyFile", "Run"}),
                ElementsAre("OpenTable SpinnerGenre", DatabaseBackup()[0], "Run BuildORsRecordset",
                            "Run PopulateGenre", "Run UpdateDatabaseFromID3", "Flush", "Flush"));
}

TEST_F(ModesTest, BackUpWithTheDatabaseWhatAnInterruptedRunHasLeftBesideIt) {
    const std::string database = R"(D:\Data\cdj.mdb)";
    const std::string stamp = "_Copy Dated_11152026_53855_AM_";
    world.files.AddFile(database + ".playlists", "p");
    SwitchOn({"ID3Update"});
    Load();
    EXPECT_EQ(world.files.Content(database + stamp), "rows");
    EXPECT_EQ(world.files.Content(database + ".playlists" + stamp), "p");
}

TEST_F(ModesTest, ClearWhatKilledRunsHaveLeftInTheFoldersThatTheyWriteInto) {
    host.Set("AlbumCoverFolder", R"(E:\Covers)");
    SwitchOn({"ID3Write"});
    Load();
    EXPECT_THAT(Calls({"RemoveUnfinished"}),
                ElementsAre(R"(RemoveUnfinished D:\Data\)", R"(RemoveUnfinished C:\Lists\)",
                            R"(RemoveUnfinished C:\M3u\)", R"(RemoveUnfinished C:\)",
                            R"(RemoveUnfinished C:\)", R"(RemoveUnfinished E:\Covers\)",
                            R"(RemoveUnfinished C:\HomeSeer\Data\Quillon)",
                            R"(RemoveUnfinished C:\HomeSeer\HTML\Quillon\albumcovers\)"));
}

TEST_F(ModesTest, WouldBeThisOneForTheSettings) {
    Settings settings;
    EXPECT_EQ(SelectMode(settings), nullptr);
    settings.Reconcile = true;
    ASSERT_NE(SelectMode(settings), nullptr);
    EXPECT_EQ(SelectMode(settings)->what, "Reconcile library and database");
    settings.AddFiles = true;
    EXPECT_EQ(SelectMode(settings)->what, "Reconcile library and database");
    settings.LibraryRoot = R"(D:\Music)";
    EXPECT_EQ(SelectMode(settings)->what, "Add files to library");
}

/// The folders that a run with these settings works in: "PlayListPath rwe" for one that it reads,
/// writes and cannot do without.
std::vector<std::string> UsedFolders(const Settings& settings) {
    constexpr std::array Folders{
        std::pair("LibraryRoot", RunFolder::LibraryRoot),
        std::pair("FromFilesPath", RunFolder::FromFilesPath),
        std::pair("PlayListPath", RunFolder::PlayListPath),
        std::pair("PlayListPath2", RunFolder::PlayListPath2),
        std::pair("AlbumCoverFolder", RunFolder::AlbumCoverFolder),
        std::pair("Data", RunFolder::Data),
        std::pair("HTML", RunFolder::Html),
    };
    std::vector<std::string> used;
    for (const auto& [name, folder] : Folders) {
        const FolderUse use = UseOf(folder, settings);
        const std::string how = std::string(use.isRead ? "r" : "") + (use.isWritten ? "w" : "") +
                                (use.isEssential ? "e" : "");
        if (!how.empty()) used.push_back(std::string(name) + ' ' + how);
    }
    return used;
}

TEST(FoldersOfModes, AreThoseThatTheModeWorksIn) {
    const auto usedBy = [](bool Settings::* mode) {
        Settings settings;
        settings.LibraryRoot = R"(D:\Music\)";
        settings.*mode = true;
        return UsedFolders(settings);
    };
    EXPECT_THAT(usedBy(&Settings::ID3Update), IsEmpty());
    EXPECT_THAT(usedBy(&Settings::AddFiles),
                ElementsAre("LibraryRoot we", "FromFilesPath re", "AlbumCoverFolder w"));
    EXPECT_THAT(usedBy(&Settings::ID3Write), ElementsAre("LibraryRoot we"));
    EXPECT_THAT(usedBy(&Settings::AlbumPicker), ElementsAre("AlbumCoverFolder r", "HTML we"));
    EXPECT_THAT(usedBy(&Settings::PlaToM3u), ElementsAre("PlayListPath re", "PlayListPath2 we"));
    EXPECT_THAT(usedBy(&Settings::MakeRemote), IsEmpty());
    EXPECT_THAT(usedBy(&Settings::M3uToPla), IsEmpty());
}

TEST(FoldersOfModes, OfAReconciliationDependOnItsSettings) {
    Settings settings;
    settings.Reconcile = true;
    settings.ID3Reconcile = false;
    EXPECT_THAT(UsedFolders(settings),
                ElementsAre("LibraryRoot re", "PlayListPath w", "AlbumCoverFolder r"));
    settings.ID3Reconcile = settings.ReconcileOption = true;
    EXPECT_THAT(UsedFolders(settings),
                ElementsAre("LibraryRoot rwe", "PlayListPath w", "AlbumCoverFolder r", "Data w"));
    settings.PlaylistsOnly = true;
    EXPECT_THAT(UsedFolders(settings), ElementsAre("PlayListPath we"));
    settings.Reconcile = false;
    EXPECT_THAT(UsedFolders(settings), IsEmpty());
}

}  // namespace
}  // namespace quillon
