#include "tests/id3/verify_fixture.h"

/// Files that the comparison renames or deletes, and their rows.
namespace quillon {
namespace {

using support::RawTag;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using VerifyRenamesTest = VerifyTest;

TEST_F(VerifyRenamesTest, GiveAFileItsTagsTitle) {
    AddTrack("Alder - Dawn.mp3", "Dawn", TagOf("Dusk", 4));
    Verify();
    TakeNumbers();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dusk.mp3"));
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dusk.mp3|Dusk|4|1"));
    EXPECT_THAT(Differences(), ElementsAre("Song|Dusk|Dawn|Dawn"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: " + PathOf("Alder - Dawn.mp3") + " is now Alder - Dusk.mp3"));
    EXPECT_EQ(library.run.counts.filesRenamed, 1U);
}

TEST_F(VerifyRenamesTest, PutTheArtistBeforeATitle) {
    AddTrack("Dawn.mp3", "Dawn", TagOf("Dusk"));
    Verify();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dusk.mp3"));
}

TEST_F(VerifyRenamesTest, LeaveAFileWhoseOtherFieldsDiffer) {
    RawTag tag = TagOf("Dawn");
    tag.artist = "x";
    AddTrack("Dawn.mp3", "Dawn", tag);
    Verify();
    EXPECT_THAT(Names(), ElementsAre("Dawn.mp3"));
}

TEST_F(VerifyRenamesTest, KeepTheBlanksOfATitle) {
    AddFile("Dawn.mp3", TagOf(" Dusk "));
    Verify();
    EXPECT_THAT(Names(), ElementsAre("Alder -  Dusk .mp3"));
}

TEST_F(VerifyRenamesTest, CleanATitleSoThatItStaysInItsFolder) {
    AddFile("1.mp3", TagOf(R"(..\..\x: y?)"));
    AddFile("2.mp3", TagOf("AC/DC [live]"));
    AddFile("3.mp3", TagOf("Ends in dots..."));
    Verify();
    EXPECT_THAT(Names(), ElementsAre("Alder - ..-..-x y.mp3", "Alder - AC-DC (live).mp3",
                                     "Alder - Ends in dots....mp3"));
}

TEST_F(VerifyRenamesTest, LogATitleOfWhichNothingIsLeft) {
    AddFile("Dawn.mp3", TagOf("???"));
    AddFile("Noon.mp3", TagOf("* *"));
    Verify();
    EXPECT_THAT(Names(), ElementsAre("Dawn.mp3", "Noon.mp3"));
    EXPECT_THAT(
        library.host.log,
        ElementsAre("Quillon: VerifyID3TagsFolder Line 7 Bad file name or number: title ??? (" +
                        PathOf("Dawn.mp3") + ")",
                    "Quillon: VerifyID3TagsFolder Line 7 Bad file name or number: title * * (" +
                        PathOf("Noon.mp3") + ")"));
    EXPECT_THAT(Differences(), ElementsAre("Song|???|Dawn|Dawn", "Song|* *|Noon|Noon"));
}

TEST_F(VerifyRenamesTest, LogATitleThatNoNameCanHold) {
    AddTrack("Dawn.mp3", "Dawn", TagOf("The \"Dusk\""));
    AddTrack("Noon.mp3", "Noon", TagOf("a\x01z", 2));
    Verify();
    EXPECT_THAT(Names(), ElementsAre("Dawn.mp3", "Noon.mp3"));
    EXPECT_EQ(library.host.log.size(), 2U);
    EXPECT_THAT(Tracks(), ElementsAre("Dawn.mp3|Dawn|1|1", "Noon.mp3|Noon|2|2"));
}

// A title of characters that names cannot hold can never agree with the name.
TEST_F(VerifyRenamesTest, DoNotTakeAFileForADuplicateOfItself) {
    AddTrack("alder - Why Now.mp3", "Why Now", TagOf("Why? Now", 3));
    Verify();
    EXPECT_THAT(Names(), ElementsAre("alder - Why Now.mp3"));
    EXPECT_THAT(library.calls.Of({"MoveFile", "DeleteFile"}), IsEmpty());
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(VerifyRenamesTest, DeleteADuplicateOfAFileThatHasTheTagsTitle) {
    AddTrack("Alder - Dusk.mp3", "Dusk", TagOf("Dusk", 1));
    AddTrack("Dawn.mp3", "Dawn", TagOf("DUSK", 2));
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dusk.mp3"));
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dusk.mp3|Dusk|1|1"));
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(VerifyRenamesTest, GiveTheRowOfADuplicateToTheFileThatHasNone) {
    AddFile("Alder - Dusk.mp3", TagOf("Dusk"));
    AddTrack("Dawn.mp3", "Dawn", TagOf("Dusk"));
    Reconcile();
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dusk.mp3|Dusk|1|1"));
}

TEST_F(VerifyRenamesTest, LogADuplicateThatCannotBeDeleted) {
    AddTrack("Alder - Dusk.mp3", "Dusk", TagOf("Dusk", 1));
    AddTrack("Dawn.mp3", "Dawn", TagOf("Dusk", 2));
    library.calls.Refuse("DeleteFile " + PathOf("Dawn.mp3"), FailureNumber::PermissionDenied,
                         PathOf("Dawn.mp3"));
    Reconcile();
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: VerifyID3TagsFolder Line 7 Permission "
                                              "denied: " +
                                              PathOf("Dawn.mp3")));
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dusk.mp3|Dusk|1|1", "Dawn.mp3|Dawn|2|2"));
}

TEST_F(VerifyRenamesTest, LogAFileThatCannotBeRenamedAndKeepItsRow) {
    AddTrack("Alder - Dawn.mp3", "Dawn", TagOf("Dusk", 1));
    AddTrack("Alder - Noon.mp3", "Noon", TagOf("Moon", 2));
    library.calls.Refuse(
        "MoveFile " + PathOf("Alder - Dawn.mp3") + " -> " + PathOf("Alder - Dusk.mp3"),
        FailureNumber::PermissionDenied, PathOf("Alder - Dusk.mp3"));
    Reconcile();
    EXPECT_THAT(
        library.host.log,
        ElementsAre("Quillon: VerifyID3TagsFolder Line 7 Permission denied: " +
                        PathOf("Alder - Dusk.mp3") + " (" + PathOf("Alder - Dawn.mp3") + ")",
                    "Quillon: " + PathOf("Alder - Noon.mp3") + " is now Alder - Moon.mp3"));
    EXPECT_EQ(library.run.counts.filesRenamed, 1U);
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dawn.mp3|Dawn|1|1", "Alder - Moon.mp3|Moon|2|2"));
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(VerifyRenamesTest, DoNotStartBeforeTheRowsAreDurable) {
    AddTrack("Alder - Dawn.mp3", "Dawn", TagOf("Dusk"));
    library.Database().Refuse("Flush");
    Verify();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dawn.mp3"));
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dawn.mp3|Dawn|1|1"));
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: VerifyID3TagsFolder Line 7 refused (" +
                                              PathOf("Alder - Dawn.mp3") + ")"));
}

TEST_F(VerifyRenamesTest, LeaveAFileWhoseRowCannotFollow) {
    AddTrack("Alder - Dawn.mp3", "Dawn", TagOf("Dusk"));
    library.Database().RefuseValue("SoundFile", PathOf("Alder - Dusk.mp3"));
    Verify();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dawn.mp3"));
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dawn.mp3|Dawn|1|1"));
}

TEST_F(VerifyRenamesTest, DeleteTheSecondOfTwoFilesOfOneTitle) {
    AddTrack("1.mp3", "1", TagOf("Dusk", 1));
    AddTrack("2.mp3", "2", TagOf("Dusk", 2));
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dusk.mp3"));
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dusk.mp3|Dusk|1|1"));
}

// Rows are titled by what follows the first dash of the path, so no row has this file's title.
TEST_F(VerifyRenamesTest, TakeTheRowOfANumberedFileAlong) {
    AddTrack("01 - Dawn.mp3", "Dawn", TagOf("Dawn"));
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dawn.mp3"));
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dawn.mp3|Dawn|1|1"));
    EXPECT_THAT(library.Rows("SELECT ID FROM Tracks"), ElementsAre("1"));
}

TEST_F(VerifyRenamesTest, LetTheRowOfAVanishedFileYieldItsPath) {
    AddRow("Alder - Dusk.mp3", "Dusk");
    AddTrack("Alder - Dawn.mp3", "Dawn", TagOf("Dusk"));
    Reconcile();
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dusk.mp3|Dusk|1|2"));
}

TEST_F(VerifyRenamesTest, KeepWhatStandsBeforeTheDriveOfARow) {
    AddFile("01 - Dawn.mp3", TagOf("Dawn"));
    library.AddTrackRow(Cdjid, 1, "file:" + PathOf("01 - DAWN.mp3"), "Dawn");
    Verify();
    EXPECT_THAT(library.Rows("SELECT SoundFile FROM Tracks"),
                ElementsAre("file:" + PathOf("Alder - Dawn.mp3")));
}

TEST_F(VerifyRenamesTest, RoundSquareBracketsOfNames) {
    AddTrack("Alder - Dawn [live] ].mp3", "Dawn [live] ]", TagOf("Dawn (live) )", 2));
    library.Execute("UPDATE Tracks SET Minutes=1, Seconds=0");
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dawn (live) ).mp3"));
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dawn (live) ).mp3|Dawn (live) )|1|1"));
    EXPECT_THAT(Differences(), ElementsAre("Comment|Length=|Length=60|Dawn (live) )"));
    EXPECT_THAT(Trouble(), IsEmpty());
}

TEST_F(VerifyRenamesTest, RoundBracketsOfFilesWithoutATagToo) {
    library.AddFile(R"(Alder\First Light\[x].MP3)");
    Verify();
    EXPECT_THAT(Names(), ElementsAre("(x).MP3"));
}

TEST_F(VerifyRenamesTest, DeleteABracketedFileWhoseTwinExists) {
    AddTrack("Alder - Dawn (live).mp3", "Dawn (live)", TagOf("Dawn (live)"));
    AddTrack("Alder - Dawn [LIVE].mp3", "Dawn [LIVE]", TagOf("x"));
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dawn (live).mp3"));
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dawn (live).mp3|Dawn (live)|1|1"));
    EXPECT_THAT(Differences(), IsEmpty());
}

TEST_F(VerifyRenamesTest, DeleteTheSecondOfTwoFilesThatWouldHaveTheSameRoundBrackets) {
    AddFile("(x].mp3", TagOf("(x)"));
    AddFile("[x].mp3", TagOf("(x)"));
    Verify();
    EXPECT_THAT(Names(), ElementsAre("(x).mp3"));
    EXPECT_THAT(library.calls.Of({"DeleteFile"}), ElementsAre("DeleteFile " + PathOf("[x].mp3")));
}

TEST_F(VerifyRenamesTest, CompareABracketedFileThatCannotBeRenamedByItsOldName) {
    AddTrack("[x].mp3", "[x]", TagOf("[x]"));
    library.calls.Refuse("MoveFile " + PathOf("[x].mp3") + " -> " + PathOf("(x).mp3"),
                         FailureNumber::PermissionDenied, PathOf("(x).mp3"));
    Verify();
    EXPECT_THAT(Tracks(), ElementsAre("[x].mp3|[x]|1|1"));
    EXPECT_THAT(Differences(), IsEmpty());
    EXPECT_EQ(library.host.log.size(), 1U);
}

TEST_F(VerifyRenamesTest, TakeATagsTitleAfterTheBracketsAreRound) {
    AddTrack("Alder - [x].mp3", "[x]", TagOf("Dusk"));
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dusk.mp3"));
    EXPECT_THAT(Differences(), ElementsAre("Song|Dusk|(x)|(x)"));
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dusk.mp3|Dusk|1|1"));
}

TEST_F(VerifyRenamesTest, AreOverAfterTheFirstRun) {
    AddTrack("01 - Dawn.mp3", "Dawn", TagOf("Dawn", 2));
    AddTrack("02 - [Noon].mp3", "[Noon]", TagOf("Noon", 1));
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dawn.mp3", "Alder - Noon.mp3"));
    library.calls.Forget();
    for (int run = 2; run <= 3; ++run) {
        Reconcile();
        EXPECT_THAT(Names(), ElementsAre("Alder - Dawn.mp3", "Alder - Noon.mp3"));
        EXPECT_THAT(Tracks(),
                    ElementsAre("Alder - Dawn.mp3|Dawn|2|1", "Alder - Noon.mp3|Noon|1|2"));
        EXPECT_THAT(library.calls.Of({"MoveFile"}), IsEmpty());
        EXPECT_THAT(Differences(), IsEmpty());
    }
}

TEST_F(VerifyRenamesTest, KeepNumbersAndPlaysThroughAnAbort) {
    AddTrack("01 - Dawn.mp3", "Dawn", TagOf("Dawn", 9));
    AddTrack("Alder - Noon.mp3", "Noon", TagOf("Moon", 7));
    AddTrack("Alder - [x].mp3", "[x]", TagOf("(x)", 5));
    RemoveDuplicates(library.run);
    Verify();
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dawn.mp3|Dawn|1|1", "Alder - Moon.mp3|Moon|2|2",
                                      "Alder - (x).mp3|(x)|3|3"));
    EXPECT_THAT(library.Rows("SELECT Tracks FROM Albums"), ElementsAre("1"));
}

TEST_F(VerifyRenamesTest, KeepNumbersAndPlaysOfAFolderThatIsOutOfReachAfterwards) {
    AddTrack("01 - Dawn.mp3", "Dawn", TagOf("Dawn", 9));
    AddTrack("Alder - Noon.mp3", "Noon", TagOf("Noon", 7));
    RemoveDuplicates(library.run);
    Verify();
    library.files.unlistable = {R"(D:\Music\Alder)"};
    RefreshDatabase(library.run);
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dawn.mp3|Dawn|1|1", "Alder - Noon.mp3|Noon|2|2"));
}

}  // namespace
}  // namespace quillon
