#include "taglib/id3v2_writer.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "platform/failure.h"
#include "taglib/tag_library.h"
#include "tests/support/tagged_file.h"
#include "tests/taglib/bytes_reader.h"

namespace quillon {
namespace {

using support::CommentContent;
using support::FrameBytes;
using support::FramesTag;
using support::Sound;
using support::TextContent;
using support::Unsynchronised;
using ::testing::EndsWith;
using ::testing::HasSubstr;

const std::string Japanese = "\xE5\xA4\x9C\xE6\x98\x8E\xE3\x81\x91";

Tag Wanted(std::string Tag::* field, const std::string& text) {
    Tag tag;
    tag.*field = text;
    return tag;
}

/// The file after the change; the same one where none is due.
std::string Changed(const std::string& file, const Tag& wanted) {
    BytesReader reader(file);
    const std::optional<HeadChange> change = TagLibrary().Change(reader, wanted);
    if (!change) return file;
    const std::string old(change->old.bytes.begin(), change->old.bytes.end());
    EXPECT_EQ(change->old.size, file.size());
    EXPECT_EQ(file.substr(change->old.position, old.size()), old);
    std::string changed = file;
    return changed.replace(change->old.position, old.size(),
                           std::string(change->bytes.begin(), change->bytes.end()));
}

Tag NewTagOf(const std::string& file) {
    BytesReader reader(file);
    return TagLibrary().Read(reader, {}).tag;
}

std::string Frame(unsigned version, const std::string& name, const std::string& content) {
    return FrameBytes(version, version == 2 ? name.substr(0, 3) : name, content);
}

/// A tag whose frames have one name in version 2.2 and a longer one later on.
std::string FileOf(unsigned version, std::size_t padding) {
    const std::string title = version == 2 ? "TT2" : "TIT2", artist = version == 2 ? "TP1" : "TPE1";
    return FramesTag(version,
                     Frame(version, artist, TextContent("An artist")) +
                         Frame(version, title, TextContent("Dawn")) +
                         Frame(version, "PICX", std::string(5000, '\xFE')),
                     padding) +
           Sound(3);
}

TEST(ChangedHead, SaysTheTextInEveryVersionAndKeepsAllElse) {
    for (const unsigned version : {2U, 3U, 4U}) {
        for (const std::string& text : {std::string("Dusk"), std::string("Caf\xC3\xA9"), Japanese,
                                        std::string("Song \xF0\x9F\x8E\xB5")}) {
            const std::string file = FileOf(version, 100);
            const std::string changed = Changed(file, Wanted(&Tag::song, text));
            EXPECT_EQ(changed.size(), file.size());
            EXPECT_EQ(NewTagOf(changed).song, text) << version;
            EXPECT_EQ(NewTagOf(changed).artist, "An artist");
            EXPECT_THAT(changed, HasSubstr(Frame(version, "PICX", std::string(5000, '\xFE'))));
            EXPECT_THAT(changed, EndsWith(Sound(3)));
        }
    }
}

TEST(ChangedHead, GrowsWhereThereIsNoRoomAndThenHasSome) {
    const std::string file = FileOf(3, 0);
    const std::string changed = Changed(file, Wanted(&Tag::song, "A longer title"));
    EXPECT_GT(changed.size(), file.size());
    EXPECT_EQ(NewTagOf(changed).song, "A longer title");
    EXPECT_THAT(changed, EndsWith(Sound(3)));
    const std::string again = Changed(changed, Wanted(&Tag::song, "A still longer title"));
    EXPECT_EQ(again.size(), changed.size());
    EXPECT_EQ(NewTagOf(again).song, "A still longer title");
}

TEST(ChangedHead, IsNoneWhereTheTagSaysSoOrHasNoSuchFrame) {
    const std::string file = FileOf(4, 10);
    EXPECT_EQ(Changed(file, Wanted(&Tag::song, "Dawn")), file);
    EXPECT_EQ(Changed(file, Wanted(&Tag::album, "First Light")), file);
    EXPECT_EQ(Changed(file, Tag()), file);
    EXPECT_EQ(Changed(Sound(3), Wanted(&Tag::song, "Dusk")), Sound(3));
}

TEST(ChangedHead, KeepsHowManyTracksThereAre) {
    const std::string file =
        FramesTag(3, FrameBytes(3, "TRCK", TextContent("3/12")), 50) + Sound(3);
    EXPECT_THAT(Changed(file, Wanted(&Tag::track, "4")), HasSubstr("4/12"));
    EXPECT_EQ(Changed(file, Wanted(&Tag::track, "3")), file);
}

TEST(ChangedHead, ChangesTheCommentThatIsOfNothing) {
    const std::string other = FrameBytes(3, "COMM", CommentContent("0000", "iTunNORM"));
    const std::string file =
        FramesTag(3, other + FrameBytes(3, "COMM", CommentContent("Length='1'")), 50) + Sound(3);
    const std::string changed = Changed(file, Wanted(&Tag::comment, "Length='184'"));
    EXPECT_THAT(changed, HasSubstr(other));
    EXPECT_EQ(NewTagOf(changed).comment, "Length='184'");
    EXPECT_THAT(changed, HasSubstr("eng"));
}

TEST(ChangedHead, SaysAGenreByItsName) {
    const std::string file =
        FramesTag(3, FrameBytes(3, "TCON", TextContent("(17)Hard Rock")), 50) + Sound(3);
    EXPECT_EQ(Changed(file, Wanted(&Tag::genre, "hard rock")), file);
    EXPECT_EQ(NewTagOf(Changed(file, Wanted(&Tag::genre, "Synthpop of my own"))).genre,
              "Synthpop of my own");
}

TEST(ChangedHead, TakesATagApartThatIsUnsynchronised) {
    using namespace std::string_literals;
    const std::string frames = FrameBytes(3, "TIT2", TextContent("\xFF\xFE\x41\x00"s, 1)) +
                               FrameBytes(3, "PICX", "\xFF\xFB\xFF\x00\xFF"s);
    const std::string file = FramesTag(3, Unsynchronised(frames), 20, 0x80) + Sound(3);
    const std::string changed = Changed(file, Wanted(&Tag::song, "Dusk"));
    EXPECT_EQ(NewTagOf(changed).song, "Dusk");
    EXPECT_THAT(changed, HasSubstr(FrameBytes(3, "PICX", "\xFF\xFB\xFF\x00\xFF"s)));
    EXPECT_THAT(changed, EndsWith(Sound(3)));
}

TEST(ChangedHead, RefusesATagOfWhichSomethingWouldBeLost) {
    const std::string frames = FrameBytes(3, "TIT2", TextContent("Dawn")) + "garbage of some kind";
    EXPECT_THROW(Changed(FramesTag(3, frames) + Sound(3), Wanted(&Tag::song, "Dusk")), Failure);
}

TEST(ChangedHead, KeepsWhatLiesBetweenFrames) {
    const std::string empty = FrameBytes(3, "TPE2", "");
    const std::string file =
        FramesTag(3, empty + FrameBytes(3, "TIT2", TextContent("Dawn")) + empty, 30) + Sound(3);
    const std::string changed = Changed(file, Wanted(&Tag::song, "Dusk"));
    EXPECT_EQ(changed.size(), file.size());
    EXPECT_EQ(changed.find(empty, changed.find(empty) + 1) != std::string::npos, true);
}

TEST(ChangedHead, GivesTheFileBackWhenTheOldTextIsWantedAgain) {
    for (const unsigned version : {2U, 3U, 4U}) {
        const std::string file = FileOf(version, 60);
        const std::string there = Changed(file, Wanted(&Tag::song, "A longer title"));
        EXPECT_EQ(Changed(there, Wanted(&Tag::song, "Dawn")), file);
    }
}

}  // namespace
}  // namespace quillon
