#include "id3/tag_comparison.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/failure.h"
#include "tests/support/tag_records.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The comparison of a whole tag with what its file should hold; single values are changed by the
/// tests.
class CompareTagTest : public ::testing::Test {
  protected:
    CompareTagTest() {
        expected = {.song = "Dawn",
                    .artist = "Alder",
                    .album = "First Light",
                    .track = "7",
                    .genre = "Folk"};
    }

    TagComparison Compare() { return CompareTag(tag, expected, seconds); }

    std::vector<TagDifference> With(std::string Tag::* field, const std::string& value) {
        tag.*field = value;
        return Compare().differences;
    }

    Tag tag = support::TagOfRecord("TAG|Dawn|Alder|First Light|1999|||7|Folk");
    ExpectedTag expected;
    std::string seconds;
};

TEST_F(CompareTagTest, FindsNothingWhereAllAgrees) {
    const TagComparison comparison = Compare();
    EXPECT_THAT(comparison.differences, IsEmpty());
    EXPECT_FALSE(comparison.titleDiffers);
    EXPECT_EQ(comparison.track, "7");
}

TEST_F(CompareTagTest, TakesATitleThatTheTagCutsShortForTheSame) {
    expected.song = "A title that is longer than thirty characters";
    EXPECT_THAT(With(&Tag::song, "A title that is longer than th"), IsEmpty());
}

TEST_F(CompareTagTest, TakesATagThatGoesOnBehindTheExpectedTextForTheSame) {
    EXPECT_THAT(With(&Tag::song, "Dawn (live)"), IsEmpty());
}

TEST_F(CompareTagTest, IgnoresLetterCase) {
    EXPECT_THAT(With(&Tag::artist, "ALDER"), IsEmpty());
    expected.artist = "\xC3\x96lvindr";
    EXPECT_THAT(With(&Tag::artist, "\xC3\xB6LVINDR"), IsEmpty());
    EXPECT_THAT(With(&Tag::marker, "tag"), IsEmpty());
}

TEST_F(CompareTagTest, NotesAnArtistThatDiffersInALetter) {
    EXPECT_THAT(With(&Tag::artist, "Aldes"),
                ElementsAre(TagDifference{"Artist", "Aldes", "Alder"}));
}

TEST_F(CompareTagTest, NotesEachFieldUnderItsLabelInTheOrderOfTheTag) {
    tag = support::TagOfRecord("TAG|a|b|c|1|||7|e");
    EXPECT_THAT(Compare().differences, ElementsAre(TagDifference{"Song", "a", "Dawn"},
                                                   TagDifference{"Artist", "b", "Alder"},
                                                   TagDifference{"Album", "c", "First Light"},
                                                   TagDifference{"Genre", "e", "Folk"}));
}

TEST_F(CompareTagTest, TrimsTheTagsValueAndNotesItSo) {
    EXPECT_THAT(With(&Tag::song, "  Dawn  "), IsEmpty());
    EXPECT_THAT(With(&Tag::song, "  Dusk  "), ElementsAre(TagDifference{"Song", "Dusk", "Dawn"}));
}

TEST_F(CompareTagTest, DoesNotCompareAnEmptyValue) {
    EXPECT_THAT(With(&Tag::song, ""), IsEmpty());
    EXPECT_THAT(With(&Tag::artist, "   "), IsEmpty());
}

TEST_F(CompareTagTest, DoesNotCompareWhereNothingIsExpected) {
    expected.genre = "";
    EXPECT_THAT(With(&Tag::genre, "Rock"), IsEmpty());
    EXPECT_THAT(With(&Tag::year, "1066"), IsEmpty());
    EXPECT_THAT(With(&Tag::ver, "x"), IsEmpty());
}

TEST_F(CompareTagTest, SaysWhenTheTitleDiffers) {
    EXPECT_FALSE(Compare().titleDiffers);
    tag.artist = "x";
    EXPECT_FALSE(Compare().titleDiffers);
    tag.song = "Dusk";
    EXPECT_TRUE(Compare().titleDiffers);
}

TEST_F(CompareTagTest, NeverNotesATrackNumberThatDisagrees) {
    tag.track = "3";
    const TagComparison comparison = Compare();
    EXPECT_THAT(comparison.differences, IsEmpty());
    EXPECT_EQ(comparison.track, "3");
}

TEST_F(CompareTagTest, NotesAMissingTrackNumberOfATagThatDiffersOnly) {
    tag.track = "";
    EXPECT_THAT(Compare().differences, IsEmpty());
    EXPECT_EQ(Compare().track, "");
    EXPECT_THAT(With(&Tag::artist, "x"),
                ElementsAre(TagDifference{"Artist", "x", "Alder"},
                            TagDifference{"Track Number Missing", "", ""}));
    EXPECT_EQ(Compare().track, "-1");
}

// What the code page of tags lacks is "?" in each of them; a file must not lose its name to that.
TEST_F(CompareTagTest, TakesCharactersThatNoTagCanHoldForQuestionMarks) {
    expected.song = "P\xC5\x99\x65h\xC3\xA1\xC5\x88ka";
    EXPECT_THAT(With(&Tag::song, "P?eh\xC3\xA1?ka"), IsEmpty());
    EXPECT_FALSE(Compare().titleDiffers);
    EXPECT_EQ(With(&Tag::song, "Prehanka").size(), 1U);
}

TEST_F(CompareTagTest, FailsForATagWithABarInAField) {
    tag.artist = "Al|der";
    try {
        Compare();
        FAIL() << "no failure";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), FailureNumber::SubscriptOutOfRange);
        EXPECT_THAT(failure.what(), ::testing::HasSubstr("tag record of 11 pieces"));
    }
}

class LengthTest : public CompareTagTest {
  protected:
    std::vector<std::string> Lengths(const std::string& comment, const std::string& database) {
        tag.comment = comment;
        seconds = database;
        const TagComparison comparison = Compare();
        used = comparison.seconds;
        std::vector<std::string> texts;
        for (const TagDifference& difference : comparison.differences)
            texts.push_back(std::string(difference.field) + ": " + difference.tagValue + " " +
                            difference.expected);
        return texts;
    }

    std::string used;
};

TEST_F(LengthTest, MayBeTwoSecondsOff) {
    EXPECT_THAT(Lengths("Length='180'", "180"), IsEmpty());
    EXPECT_THAT(Lengths("Length='181'", "180"), IsEmpty());
    EXPECT_THAT(Lengths("Length='178'", "180"), IsEmpty());
}

TEST_F(LengthTest, DisagreesFromThreeSecondsOn) {
    EXPECT_THAT(Lengths("Length='183'", "180"), ElementsAre("Comment: Length=183 Length=180"));
    EXPECT_THAT(Lengths("Length='177'", "180"), ElementsAre("Comment: Length=177 Length=180"));
    EXPECT_THAT(Lengths("Length='184'", "180"), ElementsAre("Comment: Length=184 Length=180"));
}

TEST_F(LengthTest, IsFoundAnywhereInTheComment) {
    EXPECT_THAT(Lengths("nice; Length='184' it is", "180"),
                ElementsAre("Comment: Length=184 Length=180"));
}

TEST_F(LengthTest, DisagreesWhenOneSideAloneKnowsIt) {
    EXPECT_THAT(Lengths("Length='184'", ""), ElementsAre("Comment: Length=184 Length="));
    EXPECT_THAT(Lengths("just a comment", "180"), ElementsAre("Comment: Length= Length=180"));
    EXPECT_THAT(Lengths("", ""), IsEmpty());
}

TEST_F(LengthTest, ThatIsBrokenIsComparedAsText) {
    EXPECT_THAT(Lengths("Length='3 min'", "180"), ElementsAre("Comment: Length=3 min Length=180"));
    EXPECT_THAT(Lengths("Length=''", ""), IsEmpty());
    EXPECT_THAT(Lengths("length='9'", ""), IsEmpty());
    EXPECT_THAT(Lengths("Length='184", "180"), ElementsAre("Comment: Length=184 Length=180"));
    EXPECT_THAT(Lengths("Length='", ""), IsEmpty());
}

TEST_F(LengthTest, IsReadAsAWholeNumber) {
    EXPECT_THAT(Lengths("Length='184.5'", "180"), ElementsAre("Comment: Length=184 Length=180"));
    EXPECT_THAT(Lengths("Length=' 184 '", "180"), ElementsAre("Comment: Length=184 Length=180"));
    EXPECT_THAT(Lengths("Length='182.4'", "180"), IsEmpty());
}

TEST_F(LengthTest, BeyondSixteenBitsIsComparedLikeAnyOther) {
    EXPECT_THAT(Lengths("Length='36000'", "36002"), IsEmpty());
    EXPECT_THAT(Lengths("Length='36000'", "180"), ElementsAre("Comment: Length=36000 Length=180"));
    EXPECT_THAT(Lengths("Length='1e300'", "180"), ElementsAre("Comment: Length=1e300 Length=180"));
    EXPECT_THAT(Lengths("Length='-5'", "180"), ElementsAre("Comment: Length=-5 Length=180"));
}

TEST_F(LengthTest, OfTheTagIsGiven) {
    Lengths("Length='184'", "180");
    EXPECT_EQ(used, "184");
    Lengths("", "180");
    EXPECT_EQ(used, "");
}

TEST_F(LengthTest, ThatDisagreesMakesTheTagDiffer) {
    tag.track = "";
    EXPECT_THAT(Lengths("Length='184'", "180"),
                ElementsAre("Comment: Length=184 Length=180", "Track Number Missing:  "));
}

}  // namespace
}  // namespace quillon
