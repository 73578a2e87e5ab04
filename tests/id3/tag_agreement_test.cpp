#include "id3/tag_agreement.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(TagAgrees, AsFarAsTheShorterOneGoesInAnyLetterCase) {
    EXPECT_TRUE(TagAgrees("Dawn", "DAWN chorus"));
    EXPECT_TRUE(TagAgrees("Dawn Chorus", "dawn"));
    EXPECT_FALSE(TagAgrees("Dawn", "Dusk"));
    EXPECT_FALSE(TagAgrees("AC/DC", "AC-DC"));
}

TEST(TagAgrees, WithAnAnsiTextThatHappensToBeUtf8) {
    // The bytes of "CAFÉ’S" in the code page.
    EXPECT_TRUE(TagAgrees("CAF\xC9\x92S", "Café’s Best"));
    EXPECT_FALSE(TagAgrees("初恋", "Dawn"));
}

TEST(TagAgreesWithName, WhereTheNameCannotHoldTheCharacter) {
    EXPECT_TRUE(TagAgreesWithName("AC/DC", "AC-DC"));
    EXPECT_TRUE(TagAgreesWithName("Dawn [live]", "Dawn (live)"));
    EXPECT_TRUE(TagAgreesWithName("Who? Me", "Who Me"));
    EXPECT_TRUE(TagAgreesWithName("Act 1: Dawn", "Act 1 Dawn"));
    EXPECT_TRUE(TagAgreesWithName("*NSYNC", "NSYNC"));
    EXPECT_TRUE(TagAgreesWithName("? Dawn", "Dawn"));
}

TEST(TagAgreesWithName, WhereTheNameHoldsWhatOtherNamesDoNot) {
    EXPECT_TRUE(TagAgreesWithName("Who's #1? Me", "Who's #1 Me"));
    EXPECT_TRUE(TagAgreesWithName("The \"Dusk\" of {x}", "The Dusk of {x}"));
}

TEST(TagAgreesWithName, NotWhereNothingIsLeftOfTheValue) {
    EXPECT_FALSE(TagAgreesWithName("???", "Dawn"));
    EXPECT_FALSE(TagAgreesWithName("$ $", "Dawn"));
}

TEST(TagAgreesWithName, NotWhereALetterDiffers) {
    EXPECT_FALSE(TagAgreesWithName("AC/DC", "AC-DS"));
    EXPECT_FALSE(TagAgreesWithName("AC/DC", "ACDC"));
}

TEST(TagAgreesWithTitle, WhereTheTagHasOnlyTheBeginningOfTheTitleInTheName) {
    EXPECT_TRUE(
        TagAgreesWithTitle("A title that no tag can ho", "01 - A title that no tag can hold"));
    for (const char* name : {"01 Dawn Chorus", "1. Dawn Chorus", "07_Dawn Chorus",
                             "2-03 Dawn Chorus", "Live - 3 - Dawn Chorus", "(x) - dawn chorus"}) {
        EXPECT_TRUE(TagAgreesWithTitle("Dawn", name)) << name;
    }
    EXPECT_TRUE(TagAgreesWithTitle("AC/DC", "01 - AC-DC Medley"));
}

TEST(TagAgreesWithTitle, NotWhereTheTagHasTheWholeTitleInTheName) {
    EXPECT_FALSE(TagAgreesWithTitle("Dawn", "01 - Dawn"));
    EXPECT_FALSE(TagAgreesWithTitle("dawn", "01 Dawn"));
    EXPECT_FALSE(TagAgreesWithTitle("Dawn?", "01 - Dawn"));
    EXPECT_FALSE(TagAgreesWithTitle("Dawn", "01 - Dawn Chorus - Dawn"));
}

TEST(TagAgreesWithTitle, NotWhereTheTagHasMoreOrSomethingElse) {
    EXPECT_FALSE(TagAgreesWithTitle("Dawn (live)", "01 - Dawn"));
    EXPECT_FALSE(TagAgreesWithTitle("Dusk", "01 - Dawn"));
    EXPECT_FALSE(TagAgreesWithTitle("Chorus", "01 - Dawn Chorus"));
    EXPECT_FALSE(TagAgreesWithTitle("Dawn", "1"));
    EXPECT_FALSE(TagAgreesWithTitle("Dawn", "01 -"));
}

TEST(HoldsMoreThanNames, ForCharactersThatNamesLose) {
    EXPECT_TRUE(HoldsMoreThanNames("AC/DC"));
    EXPECT_TRUE(HoldsMoreThanNames("[x]"));
    EXPECT_TRUE(HoldsMoreThanNames("\""));
    EXPECT_FALSE(HoldsMoreThanNames("Dawn (live) & more"));
}

}  // namespace
}  // namespace quillon
