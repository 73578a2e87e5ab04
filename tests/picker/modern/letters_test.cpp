#include "picker/modern/letters.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace quillon {
namespace {

TEST(LetterOf, IsTheFirstLetterLargeAndWithoutAccent) {
    EXPECT_EQ(LetterOf("alder"), "A");
    EXPECT_EQ(LetterOf("Ásgeir"), "A");
    EXPECT_EQ(LetterOf("Œuvre"), "O");
    EXPECT_EQ(LetterOf("łódź"), "L");
    EXPECT_EQ(LetterOf("žena"), "Z");
}

TEST(LetterOf, PassesOverWhatIsNoLetter) {
    EXPECT_EQ(LetterOf("'Til Tuesday"), "T");
    EXPECT_EQ(LetterOf("(hed) <b>"), "H");
    EXPECT_EQ(LetterOf("\u201CWeird\u201D"), "W");
    EXPECT_EQ(LetterOf("\u202Eevil"), "E");
}

TEST(LetterOf, IsASignForDigitsAndForNamesWithoutLetters) {
    EXPECT_EQ(LetterOf("2 Many"), "#");
    EXPECT_EQ(LetterOf("..."), "#");
    EXPECT_EQ(LetterOf(""), "#");
    EXPECT_EQ(LetterOf("\xFF\xFE"), "#");
}

TEST(LetterOf, KeepsOtherAlphabetsApartAndPutsGreatScriptsTogether) {
    EXPECT_EQ(LetterOf("жизнь"), "Ж");
    EXPECT_EQ(LetterOf("ωδή"), "Ω");
    EXPECT_EQ(LetterOf("אור"), "א");
    EXPECT_EQ(LetterOf("東京事変"), "Other");
    EXPECT_EQ(LetterOf("한국"), "Other");
}

TEST(LetterLess, OrdersSignsLettersAlphabetsAndTheRest) {
    std::vector<std::string> letters{"Other", "Ж", "Z", "#", "A", "Ω"};
    std::ranges::sort(letters, LetterLess);
    EXPECT_THAT(letters, ::testing::ElementsAre("#", "A", "Z", "Ω", "Ж", "Other"));
}

TEST(InitialsOf, AreThoseOfTheFirstTwoWords) {
    EXPECT_EQ(InitialsOf("First Light of day"), "FL");
    EXPECT_EQ(InitialsOf("low-tide"), "LT");
    EXPECT_EQ(InitialsOf("99 Problems"), "9P");
    EXPECT_EQ(InitialsOf("l'été indien"), "LI");
    EXPECT_EQ(InitialsOf("éclair"), "É");
    EXPECT_EQ(InitialsOf("<b> \"x\""), "BX");
    EXPECT_EQ(InitialsOf("東京"), "東");
}

TEST(InitialsOf, AreANoteWhereThereAreNone) {
    EXPECT_EQ(InitialsOf("..."), "\u266A");
    EXPECT_EQ(InitialsOf(""), "\u266A");
}

}  // namespace
}  // namespace quillon
