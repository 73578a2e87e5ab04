#include "tests/id3/verify_fixture.h"

/// Names that are exchanged, passed on and wanted by several files.
namespace quillon {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class VerifyChainsTest : public VerifyTest {
  protected:
    /// A file whose tag has another title; its content tells who it is.
    void AddSong(const std::string& title, const std::string& tagTitle, std::uint8_t track) {
        AddTrack("Alder - " + title + ".mp3", title, TagOf(tagTitle, track));
    }
    void RefuseMove(const std::string& from, const std::string& to) {
        library.calls.Refuse("MoveFile " + PathOf(from) + " -> " + PathOf(to),
                             FailureNumber::PermissionDenied, PathOf(to));
    }
    std::vector<std::string> Removals() {
        return library.calls.Of({"DeleteFile " + std::string(support::TestLibrary::Root)});
    }
    /// Whose tag has which title is what the file is.
    std::string SongIn(const std::string& name) {
        const std::string content = library.files.Content(PathOf(name));
        const std::string title = content.substr(content.size() - 125, 30);
        return title.substr(0, title.find('\0'));
    }
};

TEST_F(VerifyChainsTest, TakeANameThatBecomesFree) {
    AddSong("A", "B", 1);
    AddSong("C", "A", 2);
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - A.mp3", "Alder - B.mp3"));
    EXPECT_THAT(Tracks(), ElementsAre("Alder - B.mp3|B|1|1", "Alder - A.mp3|A|2|2"));
    EXPECT_THAT(Trouble(), IsEmpty());
}

TEST_F(VerifyChainsTest, ExchangeTheNamesOfTwoFiles) {
    AddSong("A", "B", 1);
    AddSong("B", "A", 2);
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - A.mp3", "Alder - B.mp3"));
    EXPECT_EQ(SongIn("Alder - A.mp3"), "A");
    EXPECT_EQ(SongIn("Alder - B.mp3"), "B");
    EXPECT_THAT(Tracks(), ElementsAre("Alder - B.mp3|B|1|1", "Alder - A.mp3|A|2|2"));
    EXPECT_THAT(Removals(), IsEmpty());
    EXPECT_THAT(
        library.host.log,
        UnorderedElementsAre("Quillon: " + PathOf("Alder - A.mp3") + " is now Alder - B.mp3",
                             "Quillon: " + PathOf("Alder - B.mp3") + " is now Alder - A.mp3"));
    EXPECT_EQ(library.run.counts.filesRenamed, 2U);
}

TEST_F(VerifyChainsTest, PassNamesOnFromTheEnd) {
    AddSong("A", "B", 1);
    AddSong("B", "C", 2);
    AddSong("C", "D", 3);
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - B.mp3", "Alder - C.mp3", "Alder - D.mp3"));
    EXPECT_THAT(Tracks(),
                ElementsAre("Alder - B.mp3|B|1|1", "Alder - C.mp3|C|2|2", "Alder - D.mp3|D|3|3"));
    EXPECT_THAT(Removals(), IsEmpty());
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(VerifyChainsTest, MakeEachLinkDurableBeforeTheNext) {
    AddSong("A", "B", 1);
    AddSong("B", "C", 2);
    AddSong("C", "D", 3);
    Verify();
    EXPECT_EQ(library.Database().Count("Flush"), 3U);
}

TEST_F(VerifyChainsTest, NeedOneFlushWhereAllNamesAreFree) {
    AddSong("A", "X", 1);
    AddSong("B", "Y", 2);
    AddSong("C", "Z", 3);
    Verify();
    EXPECT_EQ(library.Database().Count("Flush"), 1U);
}

TEST_F(VerifyChainsTest, TurnTwoCirclesAndAChainAtOnce) {
    AddSong("A", "B", 1);
    AddSong("B", "C", 2);
    AddSong("C", "A", 3);
    AddSong("L", "M", 4);
    AddSong("M", "N", 5);
    AddSong("X", "Y", 6);
    AddSong("Y", "X", 7);
    Reconcile();
    for (const char* title : {"A", "B", "C", "M", "N", "X", "Y"})
        EXPECT_EQ(SongIn("Alder - " + std::string(title) + ".mp3"), title);
    EXPECT_THAT(Tracks(),
                ElementsAre("Alder - B.mp3|B|1|1", "Alder - C.mp3|C|2|2", "Alder - A.mp3|A|3|3",
                            "Alder - M.mp3|M|4|4", "Alder - N.mp3|N|5|5", "Alder - Y.mp3|Y|6|6",
                            "Alder - X.mp3|X|7|7"));
    library.calls.Forget();
    Reconcile();
    EXPECT_THAT(library.calls.Of({"MoveFile"}), IsEmpty());
    EXPECT_THAT(Removals(), IsEmpty());
}

TEST_F(VerifyChainsTest, LeaveAllThatWaitForAFileThatCannotBeRenamed) {
    AddSong("A", "B", 1);
    AddSong("B", "C", 2);
    AddSong("C", "D", 3);
    AddSong("E", "F", 4);
    RefuseMove("Alder - C.mp3", "Alder - D.mp3");
    Reconcile();
    EXPECT_THAT(Names(),
                ElementsAre("Alder - A.mp3", "Alder - B.mp3", "Alder - C.mp3", "Alder - F.mp3"));
    EXPECT_THAT(Tracks(), ElementsAre("Alder - A.mp3|A|1|1", "Alder - B.mp3|B|2|2",
                                      "Alder - C.mp3|C|3|3", "Alder - F.mp3|F|4|4"));
    EXPECT_THAT(Removals(), IsEmpty());
    EXPECT_THAT(Trouble(), Contains("Quillon: " + PathOf("Alder - A.mp3") +
                                    " keeps its name, since Alder - B.mp3 is not free"));
    EXPECT_EQ(library.run.counts.errors, 1U);
}

TEST_F(VerifyChainsTest, GiveBackNamesWhereACircleCannotBeClosed) {
    AddSong("A", "B", 1);
    AddSong("B", "C", 2);
    AddSong("C", "A", 3);
    RefuseMove("Alder - C.mp3", "Alder - A.mp3");
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - A.mp3", "Alder - B.mp3", "Alder - C.mp3"));
    EXPECT_THAT(Tracks(),
                ElementsAre("Alder - A.mp3|A|1|1", "Alder - B.mp3|B|2|2", "Alder - C.mp3|C|3|3"));
    EXPECT_EQ(library.run.counts.filesRenamed, 0U);
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(VerifyChainsTest, LeaveACircleThatCannotBeOpened) {
    AddSong("A", "B", 1);
    AddSong("B", "A", 2);
    RefuseMove("Alder - A.mp3", "Alder - A.quillon-renaming.mp3");
    Reconcile();
    EXPECT_EQ(SongIn("Alder - A.mp3"), "B");
    EXPECT_THAT(Tracks(), ElementsAre("Alder - A.mp3|A|1|1", "Alder - B.mp3|B|2|2"));
}

TEST_F(VerifyChainsTest, TakeUpAFileThatWasLeftWithATemporaryName) {
    AddTrack("Alder - A.quillon-renaming.mp3", "A", TagOf("B", 1));
    AddSong("B", "A", 2);
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - A.mp3", "Alder - B.mp3"));
    EXPECT_THAT(Tracks(), ElementsAre("Alder - B.mp3|B|1|1", "Alder - A.mp3|A|2|2"));
    EXPECT_THAT(Differences(), ElementsAre("Song|B|A|A", "Song|A|B|B"));
}

TEST_F(VerifyChainsTest, GiveAFileWithATemporaryNameItsOldOneWhereItsTagHasThat) {
    AddTrack("Alder - A.quillon-renaming.mp3", "A", TagOf("A", 1));
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - A.mp3"));
    EXPECT_THAT(Differences(), IsEmpty());
}

TEST_F(VerifyChainsTest, LeaveATemporaryNameWhereAnotherFileHasTheOldOne) {
    library.AddFile(std::string(Album) + "Alder - A.quillon-renaming.mp3");
    AddSong("A", "A", 1);
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - A.mp3", "Alder - A.quillon-renaming.mp3"));
    EXPECT_THAT(Removals(), IsEmpty());
}

// A name wanted by several files.

TEST_F(VerifyChainsTest, RemoveNothingForANameThatNoFileGets) {
    AddTrack("1.mp3", "1", TagOf("Dusk", 1));
    AddTrack("2.mp3", "2", TagOf("Dusk", 2));
    RefuseMove("1.mp3", "Alder - Dusk.mp3");
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("1.mp3", "2.mp3"));
    EXPECT_THAT(Tracks(), ElementsAre("1.mp3|1|1|1", "2.mp3|2|2|2"));
    EXPECT_THAT(Removals(), IsEmpty());
}

TEST_F(VerifyChainsTest, AreNoDuplicatesOfAFileThatHasAnotherTitleInItsTag) {
    AddSong("Dusk", "The \"Night\"", 1);
    AddTrack("2.mp3", "2", TagOf("Dusk", 2));
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("2.mp3", "Alder - Dusk.mp3"));
    EXPECT_THAT(Removals(), IsEmpty());
    EXPECT_THAT(library.host.log, Contains("Quillon: " + PathOf("2.mp3") +
                                           " keeps its name, since Alder - Dusk.mp3 is not free"));
}

TEST_F(VerifyChainsTest, AreNoDuplicatesOfAFileThatCannotBeRead) {
    AddSong("Dusk", "Dusk", 1);
    AddTrack("2.mp3", "2", TagOf("Dusk", 2));
    library.calls.Refuse("OpenBinary " + PathOf("Alder - Dusk.mp3"), FailureNumber::PathFileAccess,
                         PathOf("Alder - Dusk.mp3"));
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("2.mp3", "Alder - Dusk.mp3"));
    EXPECT_THAT(Removals(), IsEmpty());
}

TEST_F(VerifyChainsTest, TakeTheNameOfADuplicateThatHasGone) {
    AddSong("A", "B", 1);
    AddSong("B", "C", 2);
    AddSong("C", "C", 3);
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - B.mp3", "Alder - C.mp3"));
    EXPECT_EQ(SongIn("Alder - B.mp3"), "B");
    EXPECT_THAT(Tracks(), ElementsAre("Alder - B.mp3|B|1|1", "Alder - C.mp3|C|2|3"));
}

TEST_F(VerifyChainsTest, LeaveWhatWaitsForADuplicateThatStays) {
    AddSong("A", "B", 1);
    AddSong("B", "C", 2);
    AddSong("C", "C", 3);
    library.run.removals.limits.MaxRemovedFiles = 0;
    Verify();
    EXPECT_THAT(Names(), ElementsAre("Alder - A.mp3", "Alder - B.mp3", "Alder - C.mp3"));
    EXPECT_THAT(Tracks(),
                ElementsAre("Alder - A.mp3|A|1|1", "Alder - B.mp3|B|2|2", "Alder - C.mp3|C|3|3"));
}

TEST_F(VerifyChainsTest, KeepABracketedFileWhoseTwinHasAnotherTitleInItsTag) {
    AddTrack("Alder - (x).mp3", "(x)", TagOf("Dusk", 1));
    AddTrack("Alder - [x].mp3", "[x]", TagOf("(x)", 2));
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre("Alder - (x).mp3", "Alder - Dusk.mp3"));
    EXPECT_EQ(SongIn("Alder - (x).mp3"), "(x)");
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dusk.mp3|Dusk|1|1", "Alder - (x).mp3|(x)|2|2"));
}

// Rows.

TEST_F(VerifyChainsTest, LeadTheRowOfAVanishedFileThroughAChain) {
    AddRow("Alder - C.mp3", "C");
    AddSong("A", "B", 1);
    AddSong("B", "C", 2);
    Verify();
    TakeNumbers();
    EXPECT_THAT(Tracks(),
                ElementsAre("Alder - A.mp3|C|1|1", "Alder - B.mp3|B|1|2", "Alder - C.mp3|C|2|3"));
}

TEST_F(VerifyChainsTest, NeverLetTwoRowsHaveOnePath) {
    AddRow("Alder - B.mp3", "B");
    AddSong("A", "B", 1);
    std::vector<std::string> paths;
    library.Database().BeforeStatement(
        "Flush", [&] { paths = library.Rows("SELECT SoundFile FROM Tracks ORDER BY ID"); });
    Verify();
    EXPECT_THAT(paths,
                ElementsAre(PathOf("Alder - B.quillon-vanished.mp3"), PathOf("Alder - B.mp3")));
}

TEST_F(VerifyChainsTest, GiveARowBackToTheFileThatAnInterruptedRunHasLedItFrom) {
    AddFile("Alder - A.mp3", TagOf("B", 1));
    AddRow("Alder - B.mp3", "B");
    RefuseMove("Alder - A.mp3", "Alder - B.mp3");
    Reconcile();
    EXPECT_THAT(Tracks(), ElementsAre("Alder - A.mp3|A|1|1"));
}

}  // namespace
}  // namespace quillon
