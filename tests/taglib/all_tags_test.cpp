#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "platform/basic_text.h"
#include "taglib/tag_library.h"
#include "tags/known_tags.h"
#include "tags/tag_reader.h"
#include "tests/support/fakes.h"
#include "tests/support/sound_file.h"
#include "tests/support/tagged_file.h"

namespace quillon {
namespace {

using support::CommentContent;
using support::FrameBytes;
using support::FramesTag;
using support::Sound;
using support::TextContent;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* Path = R"(D:\Music\A\B\x.mp3)";

class AllTagsTest : public ::testing::Test {
  protected:
    AllTagsTest() {
        world.run.settings.Nirvis_CDJ_DB = R"(D:\jukebox.mdb)";
        world.run.GenreNames[17] = "Rock";
        world.run.tagFormats = &tags;
        world.run.modern.readsAllTags = true;
        old.song = "A title that is longer than th";
        old.artist = "An old artist";
        old.comment = "Length='77'";
        old.track = 9;
        old.genre = 17;
    }

    std::string NewTag(const std::string& more = "") const {
        return FramesTag(3, FrameBytes(3, "TIT2", TextContent(Title)) + more);
    }
    Tag Read(const std::string& content, GenreAs genre = GenreAs::Name) {
        world.files.AddFile(Path, content);
        return ReadID3(world.run, Path, genre).value_or(Tag());
    }
    /// As a listing gives it.
    Tag ReadListed() { return ReadID3(world.run, world.files.GetFile(Path)).value_or(Tag()); }
    std::size_t Opened() { return world.calls.Of({"OpenBinary"}).size(); }
    void NextRun() {
        world.run.knownTags->SaveKept();
        world.run.knownTags.reset();
    }

    const std::string Title = "A title that is longer than thirty characters";
    TagLibrary tags;
    support::RawTag old;
    fakes::FakeWorld world;
};

TEST_F(AllTagsTest, FallBackFieldByFieldToVersion1) {
    const Tag tag = Read(NewTag() + Sound(383) + TagBytes(old));
    EXPECT_EQ(tag.song, Title);
    EXPECT_EQ(tag.artist, "An old artist");
    EXPECT_EQ(tag.track, "9");
    EXPECT_EQ(tag.genre, "Rock");
}

TEST_F(AllTagsTest, BelieveVersion1WhereApeSaysSomethingElse) {
    const std::string ape = support::ApeTag({{"Title", Title},
                                             {"Artist", "An artist of APE"},
                                             {"Album", "初恋"},
                                             {"Track", "3"},
                                             {"Genre", "Drone"}});
    old.album = "??";
    const Tag tag = Read(Sound(383) + ape + TagBytes(old));
    EXPECT_EQ(tag.song, Title) << "version 1 has only cut it";
    EXPECT_EQ(tag.artist, "An old artist");
    EXPECT_EQ(tag.album, "初恋");
    EXPECT_EQ(tag.track, "9");
    EXPECT_EQ(tag.genre, "Rock");
    old.genre = 12;
    EXPECT_EQ(Read(Sound(383) + ape + TagBytes(old)).genre, "Drone");
    const Tag alone = Read(Sound(383) + ape);
    EXPECT_EQ(alone.artist, "An artist of APE");
    EXPECT_EQ(alone.genre, "Drone");
}

TEST_F(AllTagsTest, AreOnlyReadWhereThatIsAskedFor) {
    world.run.modern.readsAllTags = false;
    const Tag tag = Read(NewTag() + Sound(383) + TagBytes(old));
    EXPECT_EQ(tag.song, "A title that is longer than th");
    EXPECT_EQ(tag.seconds, "");
    EXPECT_FALSE(Read(NewTag() + Sound(383)).IsThere());
}

TEST_F(AllTagsTest, TakeTheLengthFromACommentBeforeThatOfTheSound) {
    EXPECT_EQ(Read(NewTag() + Sound(383)).seconds, "10");
    EXPECT_EQ(Read(NewTag() + Sound(383) + TagBytes(old)).seconds, "77");
    const std::string comment = FrameBytes(3, "COMM", CommentContent("Length='185'"));
    EXPECT_EQ(Read(NewTag(comment) + Sound(383) + TagBytes(old)).seconds, "185");
    const std::string nonsense = FrameBytes(3, "COMM", CommentContent("Length='long'"));
    EXPECT_EQ(Read(NewTag(nonsense) + Sound(383)).seconds, "10");
}

TEST_F(AllTagsTest, AreNotShiftedByABar) {
    const std::string frame = FrameBytes(3, "TIT2", TextContent("One|Two"));
    const Tag tag = Read(FramesTag(3, frame) + Sound(383));
    EXPECT_EQ(AsRecorded(tag).song, "One|Two");
    EXPECT_EQ(PiecesOf(tag), TagFields.size());
}

TEST_F(AllTagsTest, KeepGenresThatNoTableHas) {
    const std::string frame = FrameBytes(3, "TCON", TextContent("Synthpop of my own"));
    EXPECT_EQ(Read(NewTag(frame) + Sound(3), GenreAs::Number).genre, "Synthpop of my own");
    EXPECT_EQ(Read(NewTag() + Sound(3) + TagBytes(old), GenreAs::Number).genre, "17");
}

TEST_F(AllTagsTest, AreNoneOfAFileOfNoBytesWhichIsNotOpened) {
    EXPECT_FALSE(Read("").IsThere());
    EXPECT_EQ(Opened(), 0U);
    EXPECT_THAT(world.host.log, IsEmpty());
}

TEST_F(AllTagsTest, TellTheLengthOfAFileWithoutATag) {
    const Tag tag = Read(Sound(383));
    EXPECT_FALSE(tag.IsThere());
    EXPECT_EQ(tag.seconds, "10");
}

TEST_F(AllTagsTest, OpenAFileOnceForAllOfThem) {
    Read(NewTag() + Sound(383) + TagBytes(old));
    EXPECT_EQ(Opened(), 1U);
}

TEST_F(AllTagsTest, OpenNoFileThatIsKnownInThisRunAndTheNext) {
    world.files.AddFile(Path, NewTag() + Sound(383) + TagBytes(old));
    const Tag tag = ReadListed();
    EXPECT_EQ(ReadListed(), tag);
    NextRun();
    EXPECT_EQ(ReadListed(), tag);
    EXPECT_EQ(Opened(), 1U);
}

TEST_F(AllTagsTest, NameAGenreAsTheTableOfTheRunDoes) {
    world.files.AddFile(Path, Sound(3) + TagBytes(old));
    ReadListed();
    NextRun();
    world.run.GenreNames[17] = "Rock and Roll";
    EXPECT_EQ(ReadListed().genre, "Rock and Roll");
}

TEST_F(AllTagsTest, OpenAFileAgainThatWasTouchedThoughSizeAndTimeAreTheSame) {
    world.files.AddFile(Path, NewTag() + Sound(383));
    ReadListed();
    NextRun();
    world.files.AddFile(Path, Replace(NewTag(), "longer", "LONGER") + Sound(383));
    EXPECT_THAT(ReadListed().song, HasSubstr("LONGER"));
}

TEST_F(AllTagsTest, AreReadAnewWhereWhatIsKnownIsDamaged) {
    world.files.AddFile(Path, NewTag() + Sound(383));
    const Tag tag = ReadListed();
    NextRun();
    world.files.AddFile(R"(D:\jukebox.mdb.tags)", "Quillon known tags 1\r\nTag 1\r\n");
    EXPECT_EQ(ReadListed(), tag);
    EXPECT_THAT(world.host.log, ElementsAre(HasSubstr("is damaged, and is made anew")));
    NextRun();
    ReadListed();
    EXPECT_THAT(world.host.log, SizeIs(1));
    EXPECT_EQ(Opened(), 2U);
}

TEST_F(AllTagsTest, ForgetWhatNobodyAsksForAnyMore) {
    world.files.AddFile(Path, NewTag() + Sound(383));
    ReadListed();
    NextRun();
    world.files.AddFile(R"(D:\other.mp3)", NewTag() + Sound(383));
    ReadID3(world.run, world.files.GetFile(R"(D:\other.mp3)"));
    NextRun();
    ReadListed();
    EXPECT_EQ(Opened(), 3U);
}

}  // namespace
}  // namespace quillon
