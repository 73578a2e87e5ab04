#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "id3/tag_agreement.h"

namespace quillon {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;

const std::string Whole = "A title that is longer than thirty characters";

TEST(CutTexts, AreThoseThatAFieldOfThirtyBytesMayHold) {
    EXPECT_THAT(CutTexts(Whole), Contains("A title that is longer than th"));
    EXPECT_THAT(CutTexts(Whole), Contains("A title that is longer than t"));
    std::string accents, japanese;
    for (int i = 0; i < 40; ++i) {
        accents += "\xC3\xA9";
        japanese += "\xE6\x97\xA5";
    }
    EXPECT_THAT(CutTexts(accents), Contains(accents.substr(0, 60)));
    EXPECT_THAT(CutTexts(accents), Contains(accents.substr(0, 30)));
    EXPECT_THAT(CutTexts(japanese), Contains(japanese.substr(0, 30)));
}

TEST(CutTexts, AreNoneOfATextThatHasRoom) {
    EXPECT_THAT(CutTexts(""), IsEmpty());
    EXPECT_THAT(CutTexts("Dawn"), IsEmpty());
}

TEST(IsCutOf, KnowsANameThatEndsWhereVersion1Does) {
    EXPECT_TRUE(IsCutOf("A title that is longer than th", Whole));
    EXPECT_TRUE(IsCutOf("a TITLE that is longer than t", Whole));
    EXPECT_TRUE(
        IsCutOf("What AC-DC once had as a title", "What AC/DC once had as a title of theirs"));
}

TEST(IsCutOf, IsFalseOfEveryOtherBeginning) {
    EXPECT_FALSE(IsCutOf("A title that is longer", Whole));
    EXPECT_FALSE(IsCutOf("A title that is longer than thirty", Whole));
    EXPECT_FALSE(IsCutOf(Whole, Whole));
    EXPECT_FALSE(IsCutOf("Dawn", "Dawn Chorus"));
    EXPECT_FALSE(IsCutOf("exactly thirty characters long", "exactly thirty characters long"));
}

}  // namespace
}  // namespace quillon
