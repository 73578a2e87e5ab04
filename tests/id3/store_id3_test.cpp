#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "platform/ansi.h"
#include "tests/id3/store_fixture.h"

namespace quillon {
namespace {

using support::RawTag;
using support::SoundFile;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* Progress = "Item 1. Writing ID3 for Artist: & artist.name";

TEST_F(StoreID3Test, WritesWhatTheDatabaseSaysAndKeepsYearAndCommentOfTheTag) {
    AddFile(File);
    AddDifference("Artist", "Adler");
    Write();
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light|1999|live Length='185'||4|Rock|");
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(StoreID3Test, RewritesForEachFieldThatATagHoldsAndTheDatabaseKnows) {
    for (const std::string field :
         {"Tag", "Song", "Artist", "Album", "Comment", "Track", "Genre", "Track Number Missing"}) {
        library.Execute("DELETE * FROM SpinnerID3Differences");
        AddFile(File);
        AddDifference(field);
        Write();
        EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light|1999|live Length='185'||4|Rock|") << field;
    }
}

TEST_F(StoreID3Test, LeavesAFileAloneForFieldsThatTheDatabaseDoesNotKnow) {
    AddFile(File);
    for (const std::string field : {"Year", "Ver", "", "Anything", "track number missing"})
        AddDifference(field);
    Write();
    EXPECT_THAT(Writes(), IsEmpty());
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(StoreID3Test, WritesOnlyFilesWithDifferences) {
    AddFile(File);
    AddFile(R"(Alder\First Light\Alder - Noon.mp3)");
    AddDifference("Album");
    Write();
    EXPECT_THAT(Writes(), ElementsAre(R"(WriteEnd D:\Music\Alder\First Light\Alder - Dawn.mp3)"));
}

TEST_F(StoreID3Test, ShowsThePlainTextForEachArtist) {
    AddFile(File);
    AddDifference("Album");
    AddDifference("Album", "", "One", "Birch");
    Write();
    EXPECT_THAT(library.calls.Of({"Item"}), ElementsAre(Progress));
    EXPECT_EQ(library.window.last.aItem, "1. Writing ID3 for Artist: & artist.name");
}

TEST_F(StoreID3Test, ASecondRunWritesNothing) {
    AddFile(File);
    AddDifference("Album");
    Write();
    library.calls.Forget();
    Write();
    EXPECT_THAT(Writes(), IsEmpty());
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(StoreID3Test, CountsTagsThatHaveBecomeOthers) {
    AddFile(File);
    AddDifference("Album");
    AddDifference("Album", "", "Gone");
    Write();
    EXPECT_EQ(library.run.counts.tagsWritten, 1U);
    Write();
    EXPECT_EQ(library.run.counts.tagsWritten, 1U);
}

TEST_F(StoreID3Test, DoesNotChangeTheDatabase) {
    AddFile(File);
    AddDifference("Album");
    const auto rows = library.Rows("SELECT * FROM SpinnerID3Differences");
    Write();
    EXPECT_EQ(library.Rows("SELECT * FROM SpinnerID3Differences"), rows);
    EXPECT_EQ(library.Database().Count("UPDATE") + library.Database().Count("DELETE"), 0U);
}

TEST_F(StoreID3Test, ReadsEachSongsDifferencesOnce) {
    AddFile(File);
    AddDifference("Album");
    AddDifference("Genre");
    AddDifference("Artist");
    Write();
    EXPECT_EQ(library.Database().Count("SELECT * FROM SpinnerID3Differences WHERE Artist ="
                                       "\"Alder\" AND Album = \"First Light\" AND Track =\"Dawn\""),
              1U);
    EXPECT_THAT(Writes(), SizeIs(1));
}

// Finding files.

TEST_F(StoreID3Test, FindsAFileWithoutTheArtistInItsName) {
    AddFile(std::string(Folder) + "Dawn.mp3");
    AddDifference("Album");
    Write();
    EXPECT_EQ(Record(std::string(Folder) + "Dawn.mp3"),
              "TAG|Dawn|Alder|First Light|1999|live Length='185'||4|Rock|");
}

TEST_F(StoreID3Test, WritesBothFilesWhenOneHasTheArtistInItsNameAndOneHasNot) {
    AddFile(File);
    AddFile(std::string(Folder) + "Dawn.mp3");
    AddDifference("Album");
    Write();
    EXPECT_THAT(Writes(), SizeIs(2));
}

TEST_F(StoreID3Test, FindsFilesWhateverTheLetterCase) {
    AddFile(R"(ALDER\first light\alder - DAWN.MP3)");
    AddDifference("Album");
    Write();
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light|1999|live Length='185'||4|Rock|");
}

TEST_F(StoreID3Test, FindsAFileThatRepeatsItsArtistOrEnding) {
    AddFile(std::string(Folder) + "Alder - Alder - Dawn.mp3.mp3");
    AddDifference("Album");
    Write();
    EXPECT_THAT(Writes(), SizeIs(1));
}

TEST_F(StoreID3Test, FindsFilesInEveryLibraryFolder) {
    library.run.LibraryFolders.push_back({R"(D:\More)", "More"});
    library.files.AddFile(R"(D:\More\Alder\First Light\Alder - Dawn.mp3)", SoundFile(OldTag()));
    AddDifference("Album");
    Write();
    EXPECT_THAT(Writes(), ElementsAre(R"(WriteEnd D:\More\Alder\First Light\Alder - Dawn.mp3)"));
    AddFile(File);
    library.calls.Forget();
    Write();
    EXPECT_THAT(Writes(), ElementsAre(R"(WriteEnd D:\Music\Alder\First Light\Alder - Dawn.mp3)"));
}

TEST_F(StoreID3Test, LeavesOtherFilesOfTheTitleAlone) {
    for (const char* path :
         {R"(Alder\Second Light\Alder - Dawn.mp3)", R"(Birch\First Light\Birch - Dawn.mp3)",
          R"(Alder\First Light\Alder - Dawn.txt)", R"(Alder\First Light\Alder - Dawn Chorus.mp3)",
          R"(Alder\Alder - Dawn.mp3)", R"(Alder\First Light\Inner\Alder - Dawn.mp3)"}) {
        AddFile(path);
    }
    AddDifference("Album");
    Write();
    EXPECT_THAT(Writes(), IsEmpty());
}

TEST_F(StoreID3Test, LogsASongWithoutFileAndGoesOn) {
    AddFile(File);
    AddDifference("Album", "", "Aurora");
    AddDifference("Album");
    AddDifference("Album", "", "Noon", "Birch", "Leaves");
    Write();
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: StoreID3 Line 4 File not found: )"
                                   R"(Alder\First Light\Alder - Aurora.mp3)",
                                   R"(Quillon: StoreID3 Line 4 File not found: )"
                                   R"(Birch\Leaves\Birch - Noon.mp3)"));
    EXPECT_THAT(Writes(), SizeIs(1));
}

TEST_F(StoreID3Test, IsNotLedOutOfTheLibraryByNamesInTheDatabase) {
    library.files.AddFile(R"(D:\Other\Alder - Dawn.mp3)", SoundFile(OldTag()));
    AddDifference("Album", "", "Dawn", "..", "Other");
    AddDifference("Album", "", "Dawn", "Alder", R"(..\..\Other)");
    AddDifference("Album", "", R"(..\..\..\Other\Alder - Dawn)", "Alder", "First Light");
    AddDifference("Album", "", "Dawn", "", "");
    AddFile(R"(Alder\First Light\Alder - Noon.mp3)");
    Write();
    EXPECT_THAT(Writes(), IsEmpty());
    EXPECT_EQ(Log().size(), 4U);
}

TEST_F(StoreID3Test, FindsAFileThatTheVerificationHasRenamedByItsTag) {
    AddTrack("252E671073EC0001", 8, "AC-DC (live)", 2, 0);
    const std::string path = std::string(Folder) + "Alder - AC-DC (live).mp3";
    AddFile(path);
    AddDifference("Song", "AC/DC [live]?", "Old Name");
    Write();
    EXPECT_EQ(Record(path),
              "TAG|AC-DC (live)|Alder|First Light|1999|live Length='120'||8|AlternRock|");
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(StoreID3Test, FindsARenamedFileWhoseTagTitleHadBlanksAtItsEnd) {
    AddFile(std::string(Folder) + "Alder - Dusk   .mp3");
    AddDifference("Song", "Dusk", "Dawn");
    Write();
    EXPECT_THAT(Writes(), SizeIs(1));
}

TEST_F(StoreID3Test, GivesAFileThatWasNotRenamedTheTitleOfItsName) {
    AddFile(File);
    AddFile(std::string(Folder) + "Alder - Dusk.mp3");
    AddDifference("Song", "Dusk");
    Write();
    EXPECT_THAT(Writes(), ElementsAre(R"(WriteEnd D:\Music\Alder\First Light\Alder - Dawn.mp3)"));
}

// Trouble.

TEST_F(StoreID3Test, LogsAFolderThatCannotBeListed) {
    AddFile(File);
    AddDifference("Album");
    library.files.unlistable.insert(R"(D:\Music\Alder\First Light)");
    Write();
    ASSERT_EQ(Log().size(), 2U);
    EXPECT_EQ(Log()[0],
              R"(Quillon: StoreID3 Line 2 Permission denied: D:\Music\Alder\First Light)");
    EXPECT_THAT(Log()[1], HasSubstr("File not found"));
}

TEST_F(StoreID3Test, LogsALibraryFolderThatCannotBeListedAndWritesInTheOthers) {
    library.run.LibraryFolders.insert(library.run.LibraryFolders.begin(), {R"(D:\Gone)", "Gone"});
    library.files.unlistable.insert(R"(D:\Gone)");
    AddFile(File);
    AddDifference("Album");
    Write();
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: StoreID3 Line 2 Permission denied: D:\Gone)"));
    EXPECT_THAT(Writes(), SizeIs(1));
}

TEST_F(StoreID3Test, LogsAFileThatCannotBeReadOrWrittenAndGoesOn) {
    AddFile(File);
    AddFile(R"(Alder\First Light\Alder - Eve.mp3)");
    AddFile(R"(Alder\First Light\Alder - Fog.mp3)");
    for (const char* title : {"Dawn", "Eve", "Fog"})
        AddDifference("Album", "", title);
    const std::string dawn = R"(D:\Music\Alder\First Light\Alder - Dawn.mp3)";
    const std::string eve = R"(D:\Music\Alder\First Light\Alder - Eve.mp3)";
    library.calls.Refuse("OpenBinary " + dawn, FailureNumber::PermissionDenied, dawn);
    library.calls.Refuse("WriteEnd " + eve, FailureNumber::DiskFull, eve);
    Write();
    EXPECT_THAT(Log(), ElementsAre("Quillon: StoreID3 Line 5 Permission denied: " + dawn,
                                   "Quillon: WriteID3 Management Line 6 Disk full: " + eve));
    EXPECT_EQ(Writes().back(), R"(WriteEnd D:\Music\Alder\First Light\Alder - Fog.mp3)");
}

TEST_F(StoreID3Test, LogsABarInWhatIsKeptAndLeavesTheFileAlone) {
    RawTag tag = OldTag();
    tag.comment = "this | that";
    AddFile(File, tag);
    AddDifference("Album");
    Write();
    EXPECT_THAT(Writes(), IsEmpty());
    EXPECT_THAT(Log(),
                ElementsAre("Quillon: WriteID3 Management Line 1 Record of 10 pieces instead of 9: "
                            R"(D:\Music\Alder\First Light\Alder - Dawn.mp3)"));
}

TEST_F(StoreID3Test, DoesNotMindABarInATitleThatIsReplaced) {
    RawTag tag = OldTag();
    tag.song = "Da|wn";
    tag.artist = "|";
    AddFile(File, tag);
    AddDifference("Artist");
    Write();
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light|1999|live Length='185'||4|Rock|");
}

TEST_F(StoreID3Test, LogsANameThatTheTagCannotHold) {
    AddFile("\u4E2D\\First Light\\\u4E2D - Dawn.mp3");
    AddDifference("Album", "", "Dawn", "\u4E2D");
    Write();
    EXPECT_THAT(Writes(), IsEmpty());
    ASSERT_EQ(Log().size(), 1U);
    EXPECT_THAT(Log()[0], HasSubstr("WriteID3 Management Line 5 No bytes for Artist"));
    EXPECT_THAT(Log()[0], HasSubstr("\u4E2D - Dawn.mp3"));
}

TEST_F(StoreID3Test, LogsANameWithAQuoteAndGoesOn) {
    AddFile(File);
    AddDifference("Album");
    library.Execute(
        "INSERT INTO SpinnerID3Differences (Field, Artist, Album, Track) VALUES "
        "('Album', 'A 12\" single', 'B', 'C')");
    Write();
    EXPECT_THAT(Writes(), SizeIs(1));
    ASSERT_EQ(Log().size(), 1U);
    EXPECT_THAT(Log()[0], HasSubstr("StoreID3 Line 3 Syntax error"));
    EXPECT_THAT(Log()[0], HasSubstr("A 12\" single"));
}

TEST_F(StoreID3Test, LogsDifferencesThatCannotBeRead) {
    library.Database().Refuse("SpinnerID3Differences");
    Write();
    EXPECT_THAT(Log(), ElementsAre("Quillon: StoreID3 Line 1 refused"));
}

TEST_F(StoreID3Test, StopsBetweenFilesWhenAbortIsPressed) {
    for (const char* title : {"Dawn", "Eve", "Fog"}) {
        AddFile(std::string(Folder) + "Alder - " + title + ".mp3");
        AddDifference("Album", "", title);
    }
    library.window.PressAbortWhen([&](const FormState&) { return Writes().size() == 1; });
    Write();
    EXPECT_THAT(Writes(), SizeIs(1));
}

TEST_F(StoreID3Test, WritesATagToAFileThatHasLostItsOwn) {
    library.AddFile(File);
    AddDifference("Album");
    Write();
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light||Length='185'||4|Rock|");
}

// What the database does not know.

TEST_F(StoreID3Test, SaysWhichDifferencesTheDatabaseHasNothingFor) {
    RawTag tag = OldTag();
    tag.track = 0;
    tag.comment = "Length='99'";
    AddFile(R"(Alder\First Light\Alder - Eve.mp3)", tag);
    AddDifference("Comment", "Length=99", "Eve");
    AddDifference("Track Number Missing", "", "Eve");
    Write();
    const std::string path = R"(D:\Music\Alder\First Light\Alder - Eve.mp3)";
    EXPECT_THAT(Log(), ElementsAre("Quillon: No usable length in the database for " + path,
                                   "Quillon: No usable track number in the database for " + path));
    EXPECT_EQ(Record(R"(Alder\First Light\Alder - Eve.mp3)"),
              "TAG|Eve|Alder|First Light|1999|Length='99'|||AlternRock|");
    EXPECT_EQ(library.run.counts.errors, 0U);
}

}  // namespace
}  // namespace quillon
