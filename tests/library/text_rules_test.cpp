#include "library/text_rules.h"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

#include "platform/basic_text.h"
#include "platform/utf8.h"
#include "tests/support/test_library.h"

namespace quillon {
namespace {

class TextRulesTest : public ::testing::Test {
  protected:
    /// Whether the database's own statements take two texts for one.
    bool AreEqualInDatabase(const std::string& one, const std::string& other) {
        library.Execute("DELETE * FROM SpinnerArtist");
        const auto rows = library.run.connection->OpenTable("SpinnerArtist");
        rows->AddNew();
        rows->Set("Artist", one);
        rows->Update();
        return !library.run.connection
                    ->Query("SELECT ID FROM SpinnerArtist WHERE Artist='" +
                            Replace(other, "'", "''") + "'")
                    ->IsEmpty();
    }

    support::TestLibrary library;
    TextRules rules{*library.run.connection};
    const std::vector<std::string> texts{
        "",          "a",         "A",         "Abcdefgh", "aBCDEFGH",    "ABCDEFGHI", "abcdefgh!",
        "ABCDEFGH1", "[abcdefg]", "{abcdefg}", "@abcdefg", "`abcdefg",    "straße",    "STRASSE",
        "STRAßE",    "Émile",     "éMILE",     "Emile",    "\u212Aelvin", "kelvin",    "Ёлка",
        "ёЛКА",      "İstanbul",  "istanbul",  "it's",     "IT'S",        "a\u0301",   "á"};
};

TEST_F(TextRulesTest, TellTextsApartAsStatementsDo) {
    for (const std::string& one : texts) {
        for (const std::string& other : texts) {
            const bool areEqual = AreEqualInDatabase(one, other);
            EXPECT_EQ(rules.AreEqual(one, other), areEqual) << one << ", " << other;
            EXPECT_TRUE(!areEqual || rules.Hash(one) == rules.Hash(other)) << one << ", " << other;
        }
    }
}

TEST_F(TextRulesTest, GiveEveryCharacterTheHashOfItsOtherCase) {
    for (char32_t code = 1; code < 0x11000; ++code) {
        if (code >= 0xD800 && code < 0xE000) continue;
        std::string text("x");
        AppendUtf8(text, code);
        text += 'y';
        const std::string folded = library.run.connection->FoldText(text);
        ASSERT_EQ(rules.Hash(text), rules.Hash(folded)) << text;
        ASSERT_EQ(rules.Hash(text), rules.Hash(UpperCase(text))) << text;
    }
}

TEST_F(TextRulesTest, TellIdentifiersApartByTheirLastCharacters) {
    constexpr unsigned Count = 10000, LowBits = 0xFFFF;
    std::set<std::uint32_t> places;
    for (unsigned i = 0; i < Count; ++i) {
        const std::string number = std::to_string(Count + i);
        places.insert(rules.Hash("252E671073E" + number) & LowBits);
    }
    // As many as numbers by chance would have.
    EXPECT_GT(places.size(), 9000U);
}

TEST_F(TextRulesTest, HashBytesThatAreNoTextToo) {
    for (const char* const bytes : {"\xC3", "a\xE4", "a\xE4\xB8", "\x80", "\xFF\xFE"})
        EXPECT_EQ(rules.Hash(bytes), rules.Hash(library.run.connection->FoldText(bytes))) << bytes;
}

TEST_F(TextRulesTest, KnowTheEndOfATextAsLikeDoes) {
    EXPECT_TRUE(rules.EndsWith(R"(file:D:\Music\a.mp3)", R"(d:\MUSIC\A.mp3)"));
    EXPECT_TRUE(rules.EndsWith(R"(D:\Music\Émile.mp3)", R"(\éMILE.MP3)"));
    EXPECT_TRUE(rules.EndsWith("a", ""));
    EXPECT_FALSE(rules.EndsWith("a.mp3", R"(D:\a.mp3)"));
    EXPECT_FALSE(rules.EndsWith("Emile", "émile"));
}

TEST_F(TextRulesTest, HashATextByWhatIsInFrontOfItToo) {
    EXPECT_NE(rules.Hash("b", rules.Hash("a")), rules.Hash("a", rules.Hash("b")));
    EXPECT_NE(rules.Hash("b", rules.Hash("a")), rules.Hash("ab"));
    EXPECT_EQ(rules.Hash("B", rules.Hash("A")), rules.Hash("b", rules.Hash("a")));
}

TEST_F(TextRulesTest, SortAsTheDatabaseDoes) {
    EXPECT_TRUE(rules.ComesBefore("a-b", "aC"));
    EXPECT_TRUE(rules.ComesBefore("Émile", "Ende"));
    EXPECT_FALSE(rules.ComesBefore("abc", "ABC"));
    EXPECT_FALSE(rules.ComesBefore("ABC", "abc"));
}

}  // namespace
}  // namespace quillon
