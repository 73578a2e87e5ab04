#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tags/tag.h"
#include "tests/support/sound_file.h"
#include "tests/support/tag_records.h"

namespace quillon {
namespace {

Tag RockTag() {
    return support::TagOfRecord("TAG|song|artist|album|1999|comment||7|Rock|");
}

Tag TagInBytes(const std::string& bytes) {
    return TagIn(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

TEST(TagRecord, HasABarBehindEachOfTheNineFields) {
    EXPECT_EQ(TagRecord(RockTag()), "TAG|song|artist|album|1999|comment||7|Rock|");
    EXPECT_EQ(TagRecord(support::TagOfRecord("TAG")), "TAG|||||||||");
}

TEST(TagRecord, IsEmptyWithoutATag) {
    EXPECT_EQ(TagRecord(Tag()), "");
}

TEST(PiecesOf, AreNineAndOneForEachBarInAField) {
    EXPECT_EQ(PiecesOf(RockTag()), 9U);
    Tag tag = RockTag();
    tag.song = "s|o|n";
    tag.genre = "R|B";
    EXPECT_EQ(PiecesOf(tag), 12U);
}

TEST(AsRecorded, IsTheTagItselfWithoutABarInAField) {
    EXPECT_EQ(AsRecorded(RockTag()), RockTag());
    EXPECT_EQ(AsRecorded(Tag()), Tag());
}

TEST(AsRecorded, ShiftsWhatIsBehindABar) {
    Tag tag = RockTag();
    tag.song = "so|ng";
    EXPECT_EQ(TagRecord(AsRecorded(tag)), "TAG|so|ng|artist|album|1999|comment||7|");
}

TEST(TagIn, LeavesTheGenreWithoutAName) {
    support::RawTag tag;
    tag.marker = "tag";
    tag.song = "song";
    tag.track = 7;
    tag.genre = 17;
    EXPECT_EQ(TagRecord(TagInBytes(support::TagBytes(tag))), "tag|song||||||7||");
}

TEST(TagIn, IsNoneInBytesThatAreNoTag) {
    EXPECT_EQ(TagInBytes(""), Tag());
    EXPECT_EQ(TagInBytes("TAG"), Tag());
    EXPECT_EQ(TagInBytes("TAK" + std::string(125, 'x')), Tag());
    EXPECT_EQ(TagInBytes("TAG" + std::string(126, 'x')), Tag());
}

}  // namespace
}  // namespace quillon
