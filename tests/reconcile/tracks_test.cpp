#include "reconcile/tracks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_library.h"

namespace quillon {
namespace {

using support::RawTag;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

RawTag NumberedTag(std::uint8_t track, const std::string& comment = "") {
    RawTag tag;
    tag.track = track;
    tag.comment = comment;
    return tag;
}

class ProcessTracksTest : public ::testing::Test {
  protected:
    std::vector<std::string> Log() const { return library.host.log; }

    support::TestLibrary library;
};

TEST_F(ProcessTracksTest, MakesRowsWithAllTheValuesOfANewTrack) {
    library.AddFile(R"(A\B\01 - Song.mp3)", NumberedTag(1, "Length='245'"));
    library.Reconcile();
    EXPECT_THAT(
        library.Rows("SELECT CDJID, Track, Title, Artist, Minutes, Seconds, SoundFile, Notes, "
                     "DateAdded, DateReleased, DateLastPlayed, Frames, Rating1, Rating2, Rating3, "
                     "Rating4, TimesPlayed, TimePlayed, [Group], NeverPlay FROM Tracks"),
        ElementsAre(R"(252E671073EC0001|1|Song|A|4|5|D:\Music\A\B\01 - Song.mp3|Album: B|)"
                    "11/15/2026 5:38:55 AM|0|0|0|0|0|0|0|0|0|0|False"));
    EXPECT_THAT(Log(), IsEmpty());
    EXPECT_EQ(library.run.counts.tracksAdded, 1U);
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(ProcessTracksTest, KeepsTheTagsNumbersAndTitlesOfANewAlbum) {
    library.AddFile(R"(A\B\01 - A.mp3)", NumberedTag(2), 0);
    library.AddFile(R"(A\B\02 - B.mp3)", NumberedTag(1), 1);
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\01 - A.mp3|A|2)", R"(A\B\02 - B.mp3|B|1)"));
}

TEST_F(ProcessTracksTest, RenumbersByFileTimeOnTheNextRun) {
    library.AddFile(R"(A\B\01 - A.mp3)", NumberedTag(2), 0);
    library.AddFile(R"(A\B\02 - B.mp3)", NumberedTag(1), 1);
    library.Reconcile();
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\01 - A.mp3|A|1)", R"(A\B\02 - B.mp3|B|2)"));
}

TEST_F(ProcessTracksTest, GivesATakenNumberToTheOlderFile) {
    library.AddFile(R"(A\B\newer.mp3)", NumberedTag(1), 9);
    library.AddFile(R"(A\B\older.mp3)", NumberedTag(1), 3);
    library.Reconcile();
    EXPECT_THAT(library.Tracks(),
                ElementsAre(R"(A\B\newer.mp3|newer|2)", R"(A\B\older.mp3|older|1)"));
}

TEST_F(ProcessTracksTest, GivesTheLowestFreeNumberToATagNumberAboveTheCount) {
    library.AddFile(R"(A\B\a.mp3)", NumberedTag(9), 0);
    library.AddFile(R"(A\B\b.mp3)", NumberedTag(1), 1);
    library.AddFile(R"(A\B\c.mp3)", NumberedTag(3), 2);
    library.Reconcile();
    EXPECT_THAT(library.Tracks(),
                ElementsAre(R"(A\B\a.mp3|a|2)", R"(A\B\b.mp3|b|1)", R"(A\B\c.mp3|c|3)"));
}

TEST_F(ProcessTracksTest, NumbersUntaggedFilesByTheirAge) {
    library.AddFile(R"(A\B\a.mp3)", 2);
    library.AddFile(R"(A\B\b.mp3)", 0);
    library.AddFile(R"(A\B\c.mp3)", 1);
    library.Reconcile();
    EXPECT_THAT(library.Tracks(),
                ElementsAre(R"(A\B\a.mp3|a|3)", R"(A\B\b.mp3|b|1)", R"(A\B\c.mp3|c|2)"));
}

TEST_F(ProcessTracksTest, NumbersFilesOfOneAgeInFolderOrder) {
    for (const char* name : {"c", "a", "b"})
        library.AddFile(std::string(R"(A\B\)") + name + ".mp3", 5);
    library.Reconcile();
    EXPECT_THAT(library.Tracks(),
                ElementsAre(R"(A\B\a.mp3|a|1)", R"(A\B\b.mp3|b|2)", R"(A\B\c.mp3|c|3)"));
}

TEST_F(ProcessTracksTest, PutsNewFilesIntoTheGapsBehindKnownOnes) {
    library.AddFile(R"(A\B\a.mp3)", 0);
    library.AddFile(R"(A\B\b.mp3)", 2);
    library.Reconcile();
    library.AddFile(R"(A\B\c.mp3)", NumberedTag(1), 9);
    library.Reconcile();
    // Known rows begin again at 0 and wait; the new row's tag takes its number first.
    EXPECT_THAT(library.Tracks(),
                ElementsAre(R"(A\B\a.mp3|a|2)", R"(A\B\b.mp3|b|3)", R"(A\B\c.mp3|c|1)"));
}

TEST_F(ProcessTracksTest, MovesATrackFromAnotherOwnedAlbum) {
    library.AddAlbumRow("252E671073EC0001", "Z", "Other", 1);
    library.AddTrackRow("252E671073EC0001", 1, R"(D:\Music\A\B\a.mp3)");
    library.Execute("UPDATE Tracks SET Rating1 = 4");
    library.AddFile(R"(A\B\a.mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("A|B|1"));
    EXPECT_THAT(library.Rows("SELECT CDJID, Artist, Title, Track, Rating1 FROM Tracks"),
                ElementsAre("252E671073EC0002|A|a|1|4"));
    EXPECT_EQ(library.run.counts.tracksChanged, 1U);
}

TEST_F(ProcessTracksTest, FindsARowWhoseStoredPathOnlyEndsWithTheFilesPath) {
    library.AddAlbumRow("252E671073EC0001", "A", "B", 1);
    library.AddTrackRow("252E671073EC0001", 1, R"(FILE:d:\music\a\b\SONG.MP3)");
    library.AddFile(R"(A\B\song.mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Rows("SELECT SoundFile, Title FROM Tracks"),
                ElementsAre(R"(FILE:d:\music\a\b\SONG.MP3|song)"));
}

TEST_F(ProcessTracksTest, LeavesTracksOfOtherPlayersAlone) {
    library.AddAlbumRow("C70A5B0F", "A", "B", 1, 1);
    library.AddTrackRow("C70A5B0F", 1, R"(D:\Music\A\B\a.mp3)", "theirs");
    library.AddFile(R"(A\B\a.mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Rows("SELECT CDJID, Title, Track FROM Tracks ORDER BY ID"),
                ElementsAre("C70A5B0F|theirs|1", "252E671073EC0001|a|1"));
}

TEST_F(ProcessTracksTest, TakesPathsWithWildcardCharactersLiterally) {
    for (const char* name : {"100%", "a_b", "a[b]", "#1", "a-b", "a!b", "a'b", "a`b", "a^b", "axb"})
        library.AddFile(std::string(R"(A\B\)") + name + ".mp3");
    library.Reconcile();
    EXPECT_EQ(library.Tracks().size(), 10U);
    const auto first = library.Tracks();
    library.Reconcile();
    EXPECT_EQ(library.Tracks(), first);
    EXPECT_EQ(library.run.counts.tracksAdded, 10U);
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(ProcessTracksTest, AddsATrackAnewWhoseRowHadNoSoundFile) {
    library.AddAlbumRow("252E671073EC0001", "A", "B", 1);
    library.AddTrackRow("252E671073EC0001", 1, "");
    library.AddFile(R"(A\B\a.mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\a.mp3|a|1)"));
}

TEST_F(ProcessTracksTest, CompletesNoRowForALengthBeyond16Bits) {
    library.AddFile(R"(A\B\a.mp3)", NumberedTag(1, "Length='40000'"), 0);
    library.AddFile(R"(A\B\b.mp3)", NumberedTag(2), 1);
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\b.mp3|b|2)"));
    EXPECT_THAT(Log(), ElementsAre("Quillon: ProcessTracks Line 2 Overflow: 40000 "
                                   R"((D:\Music\A\B\a.mp3))",
                                   R"(Quillon: Reconcile Track Number 1 Missing from A\B)"));
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(ProcessTracksTest, LeavesLengthUnknownWhenItIsNoNumber) {
    library.AddFile(R"(A\B\a.mp3)", NumberedTag(1, "Length='long'"));
    library.Reconcile();
    EXPECT_THAT(library.Rows("SELECT Minutes, Seconds FROM Tracks"), ElementsAre("-1|-1"));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(ProcessTracksTest, LogsAPathWithADoubleQuoteAndGoesOn) {
    library.AddFile("A\\B\\12\" mix.mp3");
    library.AddFile(R"(A\B\a.mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\a.mp3|a|1)"));
    EXPECT_THAT(Log(), ElementsAre(StartsWith("Quillon: ProcessTracks Line 1 "),
                                   R"(Quillon: Reconcile Track Number 2 Missing from A\B)"));
}

TEST_F(ProcessTracksTest, MakesNoRowsForAnAlbumFolderWithADoubleQuote) {
    library.AddFile("A\\12\" Mixes\\a.mp3");
    library.AddFile("A\\12\" Mixes\\b.mp3");
    library.AddFile(R"(A\B\a.mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("A|B|1"));
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\a.mp3|a|1)"));
    EXPECT_THAT(Log(), ElementsAre(StartsWith("Quillon: ProcessOneAlbum Line 2 "),
                                   StartsWith("Quillon: ProcessTracks Line 1 "),
                                   StartsWith("Quillon: ProcessTracks Line 1 "),
                                   "Quillon: Reconcile Track Number 1 Missing from A\\12\" Mixes",
                                   "Quillon: Reconcile Track Number 2 Missing from A\\12\" Mixes"));
}

TEST_F(ProcessTracksTest, SweepsTheRowsOfAnAlbumFolderWithADoubleQuote) {
    library.AddAlbumRow("252E671073EC0001", "A", "12\" Mixes", 1);
    library.AddTrackRow("252E671073EC0001", 1, "D:\\Music\\A\\12\" Mixes\\a.mp3");
    library.AddFile("A\\12\" Mixes\\a.mp3");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), IsEmpty());
    EXPECT_THAT(library.Tracks(), IsEmpty());
}

TEST_F(ProcessTracksTest, KeepsAKnownRowWhoseNewTitleDoesNotFit) {
    library.AddAlbumRow("252E671073EC0001", "A", "B", 1);
    library.AddTrackRow("252E671073EC0001", 1, R"(D:\Music\A\B\a.mp3)", "old title");
    library.AddFile(R"(A\B\a.mp3)");
    library.Database().RefuseValue("Title", "a");
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\a.mp3|old title|1)"));
    EXPECT_THAT(Log(),
                ElementsAre(R"(Quillon: ProcessTracks Line 3 refused (D:\Music\A\B\a.mp3))"));
}

TEST_F(ProcessTracksTest, LogsARowThatCannotBeMadeAndGoesOn) {
    library.AddFile(R"(A\B\)" + std::string(250, 'x') + ".mp3", 0);
    library.AddFile(R"(A\B\a.mp3)", 1);
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\a.mp3|a|1)"));
    EXPECT_THAT(Log(), ElementsAre(StartsWith("Quillon: ProcessTracks Line 2 "),
                                   R"(Quillon: Reconcile Track Number 2 Missing from A\B)"));
    EXPECT_EQ(library.Faults(), "");
}

// A row without its length and number would stay so.
TEST_F(ProcessTracksTest, LeavesANewFileThatCannotBeReadToTheNextRun) {
    library.AddFile(R"(A\B\a.mp3)", NumberedTag(1));
    library.calls.Refuse(R"(OpenBinary D:\Music\A\B\a.mp3)", FailureNumber::PermissionDenied,
                         R"(D:\Music\A\B\a.mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), IsEmpty());
    EXPECT_THAT(Log(), ElementsAre(StartsWith("Quillon: Read ID3 File Error: Line 3 "),
                                   R"(Quillon: Reconcile Track Number 1 Missing from A\B)"));
    library.calls.Allow(R"(OpenBinary D:\Music\A\B\a.mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\a.mp3|a|1)"));
}

TEST_F(ProcessTracksTest, DoesNotReadTagsOfKnownFiles) {
    library.AddFile(R"(A\B\a.mp3)", NumberedTag(1));
    library.Reconcile();
    library.calls.Forget();
    library.Reconcile();
    EXPECT_THAT(library.calls.Of({"OpenBinary"}), IsEmpty());
}

TEST_F(ProcessTracksTest, TakesWhatABarInATagHasShifted) {
    RawTag tag = NumberedTag(2);
    tag.song = "so|ng";
    tag.comment = "7";
    library.AddFile(R"(A\B\a.mp3)", tag, 0);
    library.AddFile(R"(A\B\b.mp3)", 1);
    library.Reconcile();
    // The number's place holds the empty Ver, so the file waits like one without a number.
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\a.mp3|a|1)", R"(A\B\b.mp3|b|2)"));
}

class ProcessTracksAloneTest : public ProcessTracksTest {
  protected:
    ProcessTracksAloneTest() { library.AddAlbumRow("252E671073EC0001", "A", "B", 2); }

    void Process(const std::vector<std::string>& names) {
        FileList files = List(names);
        Walk walk(library.run);
        ProcessTracks(walk, album, files);
        walk.library.Save();
    }

    FileList List(const std::vector<std::string>& names) {
        FileList files;
        for (const std::string& name : names) {
            library.AddFile(name);
            const FileEntry file = library.files.GetFile(library.Root + name);
            files.push_back({.Name = file.path, .FileDate = {}, .Size = file.size});
        }
        return files;
    }

    Album album{.artist = "A", .title = "B", .trackCount = 0, .cdjid = "252E671073EC0001"};
};

TEST_F(ProcessTracksAloneTest, DoesNotLookAgainHowLargeAListedFileIs) {
    album.trackCount = 9;
    FileList files = List({R"(A\B\a.mp3)"});
    library.AddFile(R"(A\B\a.mp3)", NumberedTag(7));
    files.front().Size = 1;  // no room for a tag
    Walk walk(library.run);
    ProcessTracks(walk, album, files);
    walk.library.Save();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\a.mp3|a|1)"));
}

TEST_F(ProcessTracksAloneTest, TellsOfFilesForWhichThereIsNoNumber) {
    album.trackCount = 1;
    Process({R"(A\B\a.mp3)", R"(A\B\b.mp3)"});
    // It names the row that was worked on last.
    EXPECT_THAT(Log(),
                ElementsAre(R"(Quillon: Unable to find a track number for D:\Music\A\B\a.mp3)"));
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\a.mp3|a|1)", R"(A\B\b.mp3|b|-1)"));
}

TEST_F(ProcessTracksAloneTest, TellsOfNumbersThatNoFileTook) {
    album.trackCount = 3;
    Process({R"(A\B\a.mp3)"});
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: Reconcile Track Number 2 Missing from A\B)",
                                   R"(Quillon: Reconcile Track Number 3 Missing from A\B)"));
}

TEST_F(ProcessTracksAloneTest, KeepsAKnownNumberInRange) {
    library.AddTrackRow("252E671073EC0001", 1, R"(D:\Music\A\B\a.mp3)");
    // As the comparison of tags tells it.
    library.run.TheLibrary().FindTrack(TrackId{1})->tagNumber = 2;
    album.trackCount = 2;
    Process({R"(A\B\a.mp3)", R"(A\B\b.mp3)"});
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\a.mp3|a|2)", R"(A\B\b.mp3|b|1)"));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(ProcessTracksAloneTest, RenumbersAKnownNumberAboveTheCount) {
    library.AddTrackRow("252E671073EC0001", 7, R"(D:\Music\A\B\a.mp3)");
    album.trackCount = 1;
    Process({R"(A\B\a.mp3)"});
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\a.mp3|a|1)"));
}

/// Lets a row vanish between the passes: a change of the second file's row deletes the first one's.
TEST_F(ProcessTracksAloneTest, TellsOfARowThatVanishedBeforeItsNumber) {
    library.AddTrackRow("252E671073EC0001", 0, R"(D:\Music\A\B\a.mp3)", "a");
    library.AddTrackRow("252E671073EC0001", 0, R"(D:\Music\A\B\b.mp3)");
    library.Execute("UPDATE Tracks SET Artist='A'");
    FileList files = List({R"(A\B\a.mp3)", R"(A\B\b.mp3)"});
    album.trackCount = 2;
    Walk walk(library.run);
    library.Database().BeforeStatement(
        "Update Tracks", [&walk] { walk.library.Remove(*walk.library.FindTrack(R"(A\B\a.mp3)")); });
    ProcessTracks(walk, album, files);
    walk.library.Save();
    ASSERT_EQ(Log().size(), 1U);
    EXPECT_THAT(Log()[0],
                StartsWith("Quillon: Database record missing during track number update for ID "));
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\b.mp3|b|2)"));
}

TEST_F(ProcessTracksAloneTest, AskAndTellTheDatabaseNothingAboutAnUnchangedFile) {
    album.trackCount = 2;
    Process({R"(A\B\a.mp3)", R"(A\B\b.mp3)"});
    FileList again = List({R"(A\B\a.mp3)", R"(A\B\b.mp3)"});
    Walk walk(library.run);
    library.Database().ForgetStatements();
    ProcessTracks(walk, album, again);
    walk.library.Save();
    EXPECT_EQ(library.Database().Count(""), 0U);
}

}  // namespace
}  // namespace quillon
