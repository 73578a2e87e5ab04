#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "id3/id3_to_db.h"
#include "id3/song_genre.h"
#include "taglib/tag_library.h"
#include "tags/known_tags.h"
#include "tests/id3/store_fixture.h"
#include "tests/id3/verify_fixture.h"
#include "tests/support/tagged_file.h"

namespace quillon {
namespace {

using support::FrameBytes;
using support::FramesTag;
using support::Sound;
using support::TextContent;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

const std::string LongTitle = "A title that is longer than thirty characters";
const std::string CutName = "Alder - A title that is longer than th.mp3";
const std::string LongName = "Alder - A title that is longer than thirty characters.mp3";

std::string Tagged(const std::string& title, const std::string& genre = "",
                   std::size_t length = 383) {
    std::string frames = FrameBytes(4, "TIT2", TextContent(title, 3)) +
                         FrameBytes(4, "TPE1", TextContent("Alder", 3)) +
                         FrameBytes(4, "TALB", TextContent("First Light", 3)) +
                         FrameBytes(4, "TRCK", TextContent("1/2", 3));
    if (!genre.empty()) frames += FrameBytes(4, "TCON", TextContent(genre, 3));
    return FramesTag(4, frames, 300) + Sound(length);
}

class AllTagsOfLibraryTest : public VerifyTest {
  protected:
    AllTagsOfLibraryTest() {
        library.run.tagFormats = &tags;
        library.run.modern.readsAllTags = true;
    }

    void AddTagged(const std::string& name, const std::string& content) {
        library.files.AddFile(PathOf(name), content);
        AddRow(name, "old title");
    }
    void NextRun() {
        library.run.knownTags.reset();
        library.run.ForgetTables();
        library.calls.Forget();
        Reconcile();
    }

    TagLibrary tags;
};

TEST_F(AllTagsOfLibraryTest, AFileOfACutNameGetsTheWholeTitle) {
    AddTagged(CutName, Tagged(LongTitle));
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre(LongName));
    EXPECT_THAT(Tracks(), ElementsAre(LongName + "|" + LongTitle + "|1|1"));
    // The length that the row has got from the tag is one no more.
    NextRun();
    EXPECT_THAT(Differences(), IsEmpty());
}

TEST_F(AllTagsOfLibraryTest, ACutNameAloneMakesNoDuplicate) {
    AddTagged(CutName, Tagged(LongTitle));
    AddTagged(LongName, Tagged(LongTitle));
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre(CutName, LongName));
}

TEST_F(AllTagsOfLibraryTest, ATextThatVersion1HasCutContradictsNoLongerName) {
    const support::RawTag old = TagOf("A title that is longer than th");
    library.files.AddFile(PathOf(LongName), Sound(383) + TagBytes(old));
    AddRow(LongName, LongTitle);
    Reconcile();
    EXPECT_THAT(Names(), ElementsAre(LongName));
    // The length that the row has got from the tag is one no more.
    NextRun();
    EXPECT_THAT(Differences(), IsEmpty());
}

TEST_F(AllTagsOfLibraryTest, LengthsComeFromTheSound) {
    AddTagged("Alder - Dawn.mp3", Tagged("Dawn"));
    AddTagged("Alder - Dusk.mp3", Sound(383));
    Reconcile();
    EXPECT_THAT(library.Rows("SELECT Minutes, Seconds FROM Tracks"), ElementsAre("0|10", "0|10"));
}

TEST_F(AllTagsOfLibraryTest, TheWalkAloneFindsLengthsThatNobodyKnew) {
    AddTagged("Alder - Dawn.mp3", Tagged("Dawn"));
    library.files.AddFile(PathOf("Alder - New.mp3"), Tagged("New"));
    library.Reconcile();
    EXPECT_THAT(library.Rows("SELECT Minutes, Seconds FROM Tracks"), ElementsAre("0|10", "0|10"));
}

TEST_F(AllTagsOfLibraryTest, AnUnchangedLibraryOpensNoMusicFile) {
    AddTagged("Alder - Dawn.mp3", Tagged("Dawn"));
    AddTagged("Alder - Dusk.mp3", Sound(383) + TagBytes(TagOf("Dusk", 2)));
    library.files.AddFile(PathOf("Alder - New.mp3"), Tagged("New"));
    Reconcile();
    EXPECT_THAT(library.calls.Of({"OpenBinary"}), SizeIs(3));
    const std::vector<std::string> rows = Tracks();
    NextRun();
    EXPECT_THAT(library.calls.Of({"OpenBinary", "CreateText"}), IsEmpty());
    EXPECT_EQ(Tracks(), rows);
}

TEST_F(AllTagsOfLibraryTest, ANewFileIsOpenedOnceForTagsAndSound) {
    library.run.movedMusic.FollowMovedFiles = true;
    library.run.modern.joinsDiscs = library.run.modern.keepsTrackArtists = true;
    library.files.AddFile(PathOf("Alder - Dawn.mp3"), Tagged("Dawn"));
    library.files.AddFile(PathOf(R"(CD2\Alder - Dusk.mp3)"), Tagged("Dusk", "", 300));
    Reconcile();
    EXPECT_THAT(library.calls.Of({"OpenBinary"}), SizeIs(2));
    EXPECT_EQ(library.files.Content(R"(D:\Data\jukebox.mdb.sounds)").empty(), false);
    NextRun();
    EXPECT_THAT(library.calls.Of({"OpenBinary"}), IsEmpty());
    // A song whose sound was known has gone, and is in another folder.
    library.files.MoveFile(PathOf("Alder - Dawn.mp3"), PathOf(R"(CD3\Alder - Dawn.mp3)"));
    const std::vector<std::string> ids = library.Rows("SELECT ID FROM Tracks ORDER BY ID");
    NextRun();
    EXPECT_THAT(library.calls.Of({"OpenBinary"}), SizeIs(1));
    EXPECT_EQ(library.Rows("SELECT ID FROM Tracks ORDER BY ID"), ids);
}

TEST_F(AllTagsOfLibraryTest, AnUnchangedAlbumOfSeveralDiscsAndArtistsOpensNoMusicFile) {
    library.run.modern.joinsDiscs = library.run.modern.keepsTrackArtists = true;
    library.run.modern.numbersFromTags = true;
    const auto by = [](const std::string& artist, std::size_t length) {
        return FramesTag(4, FrameBytes(4, "TPE1", TextContent(artist, 3)) +
                                FrameBytes(4, "TPOS", TextContent("2/2", 3)) +
                                FrameBytes(4, "TRCK", TextContent("1/2", 3))) +
               Sound(length);
    };
    library.files.AddFile(PathOf("Alder - Dawn.mp3"), Tagged("Dawn"));
    library.files.AddFile(PathOf("Birch - Noon.mp3"), by("Birch", 200));
    library.files.AddFile(PathOf(R"(CD1\Alder - Eve.mp3)"), by("Alder", 300));
    const auto rows = ElementsAre("Alder|1|Dawn", "Birch|2|Noon", "Alder|3|Eve");
    Reconcile();
    EXPECT_THAT(library.Rows("SELECT Artist, Track, Title FROM Tracks ORDER BY Track"), rows);
    NextRun();
    EXPECT_THAT(library.Rows("SELECT Artist, Track, Title FROM Tracks ORDER BY Track"), rows);
    EXPECT_THAT(library.calls.Of({"OpenBinary"}), IsEmpty());
}

TEST_F(AllTagsOfLibraryTest, AChangedRowIsComparedWithoutOpeningTheFile) {
    AddTagged("Alder - Dawn.mp3", Tagged("Dawn"));
    Reconcile();
    library.Execute("UPDATE Tracks SET Minutes=7");
    NextRun();
    EXPECT_THAT(Differences(), ElementsAre("Comment|Length=10|Length=430|Dawn"));
    EXPECT_THAT(library.calls.Of({"OpenBinary"}), IsEmpty());
}

TEST_F(AllTagsOfLibraryTest, WhatTheySayIsTakenIntoTheDatabase) {
    AddTagged("Alder - Dawn.mp3", Tagged("Dawn", "Synthpop of my own"));
    library.Execute(
        "INSERT INTO Spinner (Artist, Album, Song, Genre) VALUES (\"Alder\", \"First Light\", "
        "\"Dawn\", \"Rock\")");
    library.Execute("UPDATE Tracks SET Title='Dawn', Minutes=7, Seconds=0");
    const auto compare = [this] {
        library.Execute("DELETE * FROM SpinnerID3Differences");
        PopulateGenre(library.run);
        Verify();
    };
    compare();
    EXPECT_THAT(Differences(), UnorderedElementsAre("Genre|Synthpop of my own|Rock|Dawn",
                                                    "Comment|Length=10|Length=420|Dawn"));
    library.run.ForgetTables();
    UpdateDatabaseFromID3(library.run);
    EXPECT_THAT(library.Rows("SELECT Genre FROM Spinner"), ElementsAre("Synthpop of my own"));
    EXPECT_THAT(library.Rows("SELECT Minutes, Seconds FROM Tracks"), ElementsAre("0|10"));
    compare();
    EXPECT_THAT(Differences(), IsEmpty());
    EXPECT_EQ(library.run.counts.errors, 0U);
}

class WriteAllTagsTest : public StoreID3Test {
  protected:
    WriteAllTagsTest() {
        library.run.tagFormats = &tags;
        library.run.modern.readsAllTags = library.run.modern.writesAllTags = true;
    }
    void AddTagged(const std::string& content) {
        library.files.AddFile(std::string(support::TestLibrary::Root) + File, content);
        AddDifference("Song");
    }
    Tag Present() {
        return ReadID3(library.run, std::string(support::TestLibrary::Root) + File).value_or(Tag());
    }
    std::string Bytes() {
        return library.files.Content(std::string(support::TestLibrary::Root) + File);
    }

    TagLibrary tags;
};

TEST_F(WriteAllTagsTest, BothKindsSayWhatTheDatabaseSays) {
    AddTagged(Tagged("Dusk", "Jazz"));
    Write();
    const Tag tag = Present();
    EXPECT_EQ(tag.song, "Dawn");
    EXPECT_EQ(tag.genre, "Rock");
    EXPECT_EQ(tag.track, "4");
    EXPECT_EQ(tag.seconds, "185");
    EXPECT_THAT(Bytes(), HasSubstr("4/2"));
    library.run.modern.readsAllTags = false;
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light||Length='185'||4|Rock|");
    EXPECT_EQ(library.run.counts.tagsWritten, 1U);
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(WriteAllTagsTest, ASecondTimeChangesNothing) {
    AddTagged(Tagged("Dusk", "Jazz"));
    Write();
    const std::string before = Bytes();
    library.calls.Forget();
    Write();
    EXPECT_EQ(Bytes(), before);
    EXPECT_THAT(library.calls.Of({"ReplaceBytes", "WriteEnd"}), IsEmpty());
}

TEST_F(WriteAllTagsTest, Version2StaysWhereOnlyVersion1IsAskedFor) {
    library.run.modern.writesAllTags = false;
    AddTagged(Tagged("Dusk", "Jazz"));
    Write();
    EXPECT_EQ(Present().song, "Dusk");
}

TEST_F(WriteAllTagsTest, AFileWithoutVersion2GetsNone) {
    AddTagged(Sound(3));
    Write();
    EXPECT_THAT(library.calls.Of({"ReplaceBytes"}), IsEmpty());
    EXPECT_EQ(Present().song, "Dawn");
}

TEST_F(WriteAllTagsTest, AnEmptyFileGetsNone) {
    AddTagged("");
    Write();
    EXPECT_EQ(Bytes(), "");
    EXPECT_EQ(library.run.counts.tagsWritten, 0U);
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(WriteAllTagsTest, OtherOverwritesNoGenre) {
    library.Execute("UPDATE Spinner SET Genre=\"Other\"");
    AddTagged(Tagged("Dawn", "Synthpop of my own"));
    Write();
    EXPECT_EQ(Present().genre, "Synthpop of my own");
}

TEST_F(WriteAllTagsTest, ANumberIsNoGenre) {
    library.Execute("UPDATE Spinner SET Genre=\"1\"");
    AddTagged(Tagged("Dawn", "Synthpop of my own"));
    Write();
    EXPECT_EQ(Present().genre, "Synthpop of my own");
}

TEST_F(WriteAllTagsTest, ANumberIsNoGenreOfVersion1Either) {
    library.Execute("UPDATE Spinner SET Genre=\"25\"");
    AddTagged(Sound(3) + TagBytes(OldTag()));
    Write();
    EXPECT_EQ(Present().song, "Dawn");
    EXPECT_EQ(Present().genre, "AlternRock");
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(WriteAllTagsTest, AGenreThatNoTableHasIsWrittenAsText) {
    library.Execute("UPDATE Spinner SET Genre=\"Synthpop of my own\"");
    AddTagged(Tagged("Dawn", "Jazz"));
    Write();
    EXPECT_EQ(Present().genre, "Synthpop of my own");
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(WriteAllTagsTest, TextsThatVersion1CannotHoldStayInVersion2Alone) {
    const std::string japanese = "\xE5\xA4\x9C\xE6\x98\x8E\xE3\x81\x91";
    const std::string path =
        std::string(support::TestLibrary::Root) + Folder + "Alder - " + japanese + ".mp3";
    library.files.AddFile(path, Tagged("Dusk"));
    AddDifference("Song", "Dusk", japanese);
    Write();
    EXPECT_EQ(ReadID3(library.run, path).value_or(Tag()).song, japanese);
    EXPECT_THAT(library.calls.Of({"WriteEnd"}), IsEmpty());
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(WriteAllTagsTest, TheCutTitleOfAFileReplacesNoWholeOne) {
    const std::string path = std::string(support::TestLibrary::Root) + Folder + CutName;
    library.files.AddFile(path, Tagged(LongTitle));
    AddDifference("Genre", "", "A title that is longer than th");
    Write();
    EXPECT_EQ(ReadID3(library.run, path).value_or(Tag()).song, LongTitle);
}

TEST_F(WriteAllTagsTest, ADamagedTagStaysAndIsTold) {
    const std::string damaged =
        FramesTag(4, FrameBytes(4, "TIT2", TextContent("Dusk")) + "garbage of some kind");
    AddTagged(damaged + Sound(383));
    Write();
    EXPECT_THAT(Bytes(), HasSubstr(damaged));
    EXPECT_THAT(Log(), Contains(HasSubstr("since it is damaged")));
}

}  // namespace
}  // namespace quillon
