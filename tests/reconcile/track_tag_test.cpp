#include "reconcile/track_tag.h"

#include <gtest/gtest.h>
#include <string>

#include "platform/failure.h"

namespace quillon {
namespace {

/// A tag record with this comment and track number.
std::string Record(const std::string& comment, const std::string& track) {
    return "TAG|song|artist|album|1999|" + comment + "||" + track + "|Rock|";
}

TEST(ReadTrackTag, TakesTheTrackNumber) {
    EXPECT_EQ(ReadTrackTag(Record("", "7")).track, 7);
    EXPECT_EQ(ReadTrackTag(Record("", "255")).track, 255);
}

TEST(ReadTrackTag, HasNoNumberWithoutOne) {
    EXPECT_FALSE(ReadTrackTag(Record("", "")).track);
    EXPECT_FALSE(ReadTrackTag(Record("", "seven")).track);
    EXPECT_FALSE(ReadTrackTag("").track);
}

TEST(ReadTrackTag, TakesTheLengthFromTheComment) {
    EXPECT_EQ(ReadTrackTag(Record("Length='245'", "")).length, 245);
    EXPECT_EQ(ReadTrackTag(Record("x Length='7' y='8'", "")).length, 7);
    EXPECT_EQ(ReadTrackTag(Record("Length='32767'", "")).length, 32767);
}

TEST(ReadTrackTag, HasNoLengthWithoutANumberBetweenTheMarks) {
    for (const char* comment : {"", "no length", "Length=''", "Length='four'", "Length='245",
                                "length='245'", "Length=\"245\""}) {
        EXPECT_FALSE(ReadTrackTag(Record(comment, "")).length) << comment;
    }
}

TEST(ReadTrackTag, OverflowsBeyond16Bits) {
    EXPECT_THROW(ReadTrackTag(Record("Length='32768'", "")), Failure);
    EXPECT_THROW(ReadTrackTag(Record("", "40000")), Failure);
}

TEST(ReadTrackTag, TakesNothingFromAShortRecord) {
    const TrackTag tag = ReadTrackTag("TAG|artist|album|1999|Length='245'|5|Rock");
    EXPECT_FALSE(tag.track);
    EXPECT_FALSE(tag.length);
}

// A "|" in a tag's text shifts the pieces behind it; whatever then stands in a place is taken.
TEST(ReadTrackTag, TakesThePiecesThatABarHasShifted) {
    const TrackTag tag = ReadTrackTag("TAG|so|ng|a|b|1999|Length='9'|5||7|Rock|");
    EXPECT_EQ(tag.track, 5);
    EXPECT_FALSE(tag.length);
}

}  // namespace
}  // namespace quillon
