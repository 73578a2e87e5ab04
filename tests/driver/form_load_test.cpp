#include <gmock/gmock.h>

#include "tests/driver/form_fixture.h"

namespace quillon {
namespace {

using ::testing::AllOf;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;

class FormLoad : public FormFixture {};

TEST_F(FormLoad, GivesTheSeventeenIndicatorsTheirCaptions) {
    Load();
    std::vector<std::string> captions;
    captions.reserve(PhaseCount);
    for (const PhaseIndicator& indicator : run.form.aPhase)
        captions.emplace_back(indicator.caption);
    EXPECT_THAT(
        captions,
        ElementsAre("1. Capture Playlists", "2. Remove Duplicates", "3. Verify ID3",
                    "4. Add Folder Tracks to Library", "5. Add Library Tracks to Download Table",
                    "6. Correlate Download Table with Library", "7. Add Artist to Download Table",
                    "8. Updatae Playlist References", "9. Create New Playlists",
                    "10. Verify Album Covers", "1. Build Album Picker", "1. Pla to M3u Playlists",
                    "1. M3u to Pla Playlists", "1.Write ID3", "1.Update Database from ID3",
                    "1. Update Files for Remote Reference", "1. Add files to Library"));
}

TEST_F(FormLoad, ShowsTheVersion) {
    Load();
    EXPECT_EQ(run.form.lblver, "Version 1.2.3");
    EXPECT_EQ(world.window.shown->lblver, "Version 1.2.3");
}

TEST_F(FormLoad, GoesThroughItsStepsInOrder) {
    Load();
    EXPECT_THAT(Calls({"GetINISetting NPFrame FromFilesPath", "GetPlugins", "Show", "OpenDatabase",
                       "OpenTable", "Run", "CloseDatabase", "Unload"}),
                ElementsAre("GetINISetting NPFrame FromFilesPath Quillon.ini", "GetPlugins", "Show",
                            "OpenDatabase Provider = Microsoft.Jet.OLEDB.4.0; Data "
                            R"(Source=D:\Data\cdj.mdb)",
                            "OpenTable SpinnerGenre", "Run BuildORsRecordset", "Run PopulateGenre",
                            "CloseDatabase", "Unload"));
}

TEST_F(FormLoad, ShowsTheWindowWithoutIndicatorsAndEndsWhenNoModeIsAskedFor) {
    EXPECT_EQ(Load(), RunOutcome::NothingRan);
    ASSERT_TRUE(world.window.shown.has_value());
    EXPECT_FALSE(world.window.shown->aLblReconcile);
    EXPECT_THAT(world.window.shown->aPhase, Each(AllOf(Field(&PhaseIndicator::visible, false),
                                                       Field(&PhaseIndicator::selected, false))));
    EXPECT_THAT(run.form.aPhase, Each(Field(&PhaseIndicator::visible, false)));
    EXPECT_THAT(Calls({"Copy", "Execute", "Phase"}), IsEmpty());
    EXPECT_THAT(host.log, IsEmpty());
}

TEST_F(FormLoad, EndsSilentlyButForOneRecordWithoutThePlugin) {
    host.plugins = {"Other", "quillon"};
    SwitchOn({"Reconcile"});
    EXPECT_EQ(Load(), RunOutcome::NothingRan);
    EXPECT_THAT(host.log,
                ElementsAre("Quillon: Quillon must be enabled to perform management activities"));
    EXPECT_THAT(Calls({"Show", "OpenDatabase", "Run", "Copy", "Unload"}), ElementsAre("Unload"));
    EXPECT_EQ(run.counts.errors, 0U);
    EXPECT_EQ(run.form.aError, "");
}

TEST_F(FormLoad, FindsThePluginAmongOthers) {
    host.plugins = {"Other", "Quillon"};
    SwitchOn({"Reconcile"});
    EXPECT_EQ(Load(), RunOutcome::Completed);
}

TEST_F(FormLoad, StopsAtAStrictSettingThatDoesNotConvert) {
    host.Set("ImagesWide", "abc");
    SwitchOn({"Reconcile"});
    EXPECT_EQ(Load(), RunOutcome::NothingRan);
    EXPECT_THAT(
        host.log,
        ElementsAre("Quillon: QuillonShelfkeeper Load Line 0 Type mismatch: ImagesWide=abc"));
    EXPECT_EQ(run.form.aError, "QuillonShelfkeeper Load");
    EXPECT_THAT(Calls({"GetPlugins", "Show", "OpenDatabase", "Run", "Copy", "Unload"}),
                ElementsAre("Unload"));
}

TEST_F(FormLoad, StopsAtAMisspeltNameThatWouldLeaveADangerousDefault) {
    SwitchOn({"Reconcile"});
    host.Set("ID3Reconcil", "0");
    EXPECT_EQ(Load(), RunOutcome::NothingRan);
    EXPECT_THAT(host.log,
                ElementsAre("Quillon: QuillonShelfkeeper Load Line 0 Quillon.ini has the line "
                            "id3reconcil=0, which nothing reads. If ID3Reconcile is meant, correct "
                            "it: without that setting a run renames and removes files by their "
                            "tags. If not, write ID3Reconcile=0 or =1 as well"));
    EXPECT_THAT(Calls({"OpenDatabase", "Run", "Copy", "Unload"}), ElementsAre("Unload"));
}

TEST_F(FormLoad, GoesOnWithAMisspeltNameWhereItDoesNoHarm) {
    host.Set("ID3Reconcil", "0");
    host.Set("LibaryRoot", "x");
    SwitchOn({"AlbumPicker"});
    EXPECT_EQ(Load(), RunOutcome::Completed) << "no tag is looked at";
    host.Set("AlbumPicker", "0");
    SwitchOn({"Reconcile"});
    for (const char* const text : {"0", "1"}) {
        host.Set("ID3Reconcile", text);
        EXPECT_EQ(Load(), RunOutcome::Completed) << "it is set";
    }
    host.settings.erase("id3reconcile");
    host.Set("PlaylistsOnly", "1");
    EXPECT_EQ(Load(), RunOutcome::Completed);
    host.Set("PlaylistsOnly", "0");
    host.Set("LibraryRoot", "");
    EXPECT_EQ(Load(), RunOutcome::Completed);
    EXPECT_THAT(host.log, IsEmpty());
}

TEST_F(FormLoad, GoesOnWithALenientSettingThatDoesNotConvert) {
    host.Set("ArtistThreshold", "abc");
    SwitchOn({"Reconcile"});
    EXPECT_EQ(Load(), RunOutcome::Completed);
    EXPECT_EQ(run.settings.ArtistThreshold, 0);
    EXPECT_EQ(run.counts.errors, 0U);
}

TEST_F(FormLoad, StopsWhenThePluginsCannotBeLearned) {
    world.calls.Refuse("GetPlugins", FailureNumber::ObjectRequired, "host");
    EXPECT_EQ(Load(), RunOutcome::NothingRan);
    EXPECT_THAT(host.log, ElementsAre("Quillon: QuillonShelfkeeper Load Line 0 Object required: "
                                      "host"));
    EXPECT_THAT(Calls({"Show", "Unload"}), ElementsAre("Unload"));
}

TEST_F(FormLoad, StopsWhenTheLibraryRootCannotBeListed) {
    SwitchOn({"LibraryDepthOption", "Reconcile"});
    world.calls.Refuse(R"(SubFolders D:\Music)", FailureNumber::PermissionDenied, R"(D:\Music)");
    EXPECT_EQ(Load(), RunOutcome::NothingRan);
    EXPECT_THAT(host.log, ElementsAre("Quillon: QuillonShelfkeeper Load Line 0 Permission denied: "
                                      R"(D:\Music)"));
}

TEST_F(FormLoad, SplitsTheExcludeListAtItsCommasWithoutTrimming) {
    host.Set("ExcludeList", "Red, Blue,");
    Load();
    EXPECT_FALSE(run.ExcludeEmpty);
    EXPECT_THAT(run.ExcludeList, ElementsAre("Red", " Blue", ""));
}

TEST_F(FormLoad, HoldsOneEmptyValueWithoutAnExcludeList) {
    Load();
    EXPECT_TRUE(run.ExcludeEmpty);
    EXPECT_THAT(run.ExcludeList, ElementsAre(""));
}

TEST_F(FormLoad, HasTheLibraryFoldersReadyForThePhases) {
    SwitchOn({"Reconcile"});
    std::vector<FolderEntry> seen;
    Note(&Procedures::RefreshDatabase, "RefreshDatabase",
         [&](Run& context) { seen = context.LibraryFolders; });
    Load();
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(seen[0].path, R"(D:\Music)");
    EXPECT_THAT(run.LibraryFolders, IsEmpty()) << "released at the end";
}

TEST_F(FormLoad, AbortClickSetsTheFlagAndNothingElse) {
    LibraryForm form(run, world.database, "1.2.3", procedures);
    EXPECT_FALSE(run.AbortRequested);
    form.aAbort_Click();
    EXPECT_TRUE(run.AbortRequested);
    EXPECT_THAT(world.calls.Made(), IsEmpty());
}

// What main does.

TEST_F(FormLoad, FillsTheGenreNamesFromTheirTable) {
    world.database.tables["SpinnerGenre"].rows = {{std::int64_t{0}, std::string("Blues")},
                                                  {std::int64_t{255}, std::string("Last")},
                                                  {std::int64_t{17}, Null{}}};
    run.GenreNames[5] = "left over";
    Load();
    EXPECT_EQ(run.GenreNames[0], "Blues");
    EXPECT_EQ(run.GenreNames[255], "Last");
    EXPECT_EQ(run.GenreNames[17], "");
    EXPECT_EQ(run.GenreNames[5], "");
}

TEST_F(FormLoad, RunsNoPhaseWhenAGenreNumberIsOutOfRange) {
    SwitchOn({"Reconcile"});
    for (const std::int64_t id : {256, -1}) {
        host.log.clear();
        world.calls.Forget();
        world.database.tables["SpinnerGenre"].rows = {{id, std::string("Odd")}};
        EXPECT_EQ(Load(), RunOutcome::NothingRan);
        EXPECT_THAT(host.log,
                    ElementsAre("Quillon: QuillonShelfkeeper Main Line 0 Subscript out of range: "
                                "SpinnerGenre, GenreID " +
                                std::to_string(id)));
        EXPECT_THAT(Calls({"Run", "Phase", "Copy", "CloseDatabase", "Unload"}),
                    ElementsAre("CloseDatabase", "Unload"));
    }
}

TEST_F(FormLoad, RunsNoPhaseWhenAGenreNumberIsNoNumber) {
    SwitchOn({"Reconcile"});
    const std::vector<Value> oddities = {Null{}, std::string("rock")};
    for (const Value& oddity : oddities) {
        host.log.clear();
        world.database.tables["SpinnerGenre"].rows = {{oddity, std::string("Odd")}};
        EXPECT_EQ(Load(), RunOutcome::NothingRan);
        EXPECT_EQ(host.log.size(), 1U);
        EXPECT_EQ(run.form.aError, "QuillonShelfkeeper Main");
    }
    EXPECT_THAT(Calls({"Run"}), IsEmpty());
}

TEST_F(FormLoad, RunsNoPhaseWithoutTheGenreTable) {
    SwitchOn({"Reconcile"});
    world.database.tables.clear();
    EXPECT_EQ(Load(), RunOutcome::NothingRan);
    EXPECT_EQ(host.log.size(), 1U);
    EXPECT_THAT(Calls({"Run", "Copy", "CloseDatabase", "Unload"}),
                ElementsAre("CloseDatabase", "Unload"));
}

TEST_F(FormLoad, RunsNoPhaseWhenTheDatabaseCannotBeOpened) {
    SwitchOn({"Reconcile"});
    world.calls.Refuse(
        "OpenDatabase Provider = Microsoft.Jet.OLEDB.4.0; Data "
        R"(Source=D:\Data\cdj.mdb)",
        FailureNumber::FileNotFound, R"(D:\Data\cdj.mdb)");
    EXPECT_EQ(Load(), RunOutcome::NothingRan);
    EXPECT_THAT(host.log, ElementsAre("Quillon: QuillonShelfkeeper Main Line 0 File not found: "
                                      R"(D:\Data\cdj.mdb)"));
    EXPECT_THAT(Calls({"Run", "Copy", "CloseDatabase", "Unload"}), ElementsAre("Unload"));
}

TEST_F(FormLoad, SeedsTheRandomNumbersFromTheClockOnce) {
    RandomNumbers expected;
    world.clock.nanoseconds = 123'456'789;
    expected.Seed(world.clock.now, world.clock.nanoseconds);
    std::vector<double> drawn;
    const auto draw = [&drawn](Run& context) { drawn.push_back(context.random.Next()); };
    procedures.BuildORsRecordset = procedures.PopulateGenre = draw;
    Load();
    EXPECT_EQ(drawn, (std::vector{expected.Next(), expected.Next()}));
}

TEST_F(FormLoad, ReleasesConnectionDictionaryAndWorkingSet) {
    Note(&Procedures::PopulateGenre, "PopulateGenre", [](Run& context) {
        static const SongRow song;
        context.GenreDictionary.Add(song, "Rock");
    });
    Note(&Procedures::BuildORsRecordset, "BuildORsRecordset",
         [](Run& context) { context.playlistEntries.Add({.ID = 1}); });
    Load();
    EXPECT_EQ(run.connection, nullptr);
    EXPECT_EQ(run.GenreDictionary.Size(), 0U);
    EXPECT_EQ(run.playlistEntries.Count(), 0U);
}

TEST_F(FormLoad, MakesTheDatabaseDurableBeforeItIsLetGo) {
    world.calls.Refuse("Flush", FailureNumber::DiskFull, R"(D:\Data\cdj.mdb)");
    Load();
    EXPECT_THAT(host.log, ElementsAre("Quillon: QuillonShelfkeeper Main Line 0 Disk full: "
                                      R"(D:\Data\cdj.mdb)"));
    EXPECT_THAT(Calls({"Flush", "CloseDatabase"}), ElementsAre("Flush", "CloseDatabase"));
}

}  // namespace
}  // namespace quillon
