#include "reconcile/added_file.h"

#include <gtest/gtest.h>

#include "platform/failure.h"
#include "tests/support/tag_records.h"

namespace quillon {
namespace {

TEST(TitleInPath, IsWhatFollowsTheLastDash) {
    EXPECT_EQ(TitleInPath(R"(D:\New\Artist - Song.mp3)"), "Song");
    EXPECT_EQ(TitleInPath(R"(D:\New\Artist - 03 - Song.mp3)"), "Song");
    EXPECT_EQ(TitleInPath(R"(D:\New\A-ha-Take On Me.mp3)"), "Take On Me");
    EXPECT_EQ(TitleInPath(R"(D:\New\Žofie - Kapka č. 1.mp3)"), "Kapka č. 1");
}

TEST(TitleInPath, BeginsInAFoldersNameWhenTheFileHasNoDash) {
    EXPECT_EQ(TitleInPath(R"(D:\New-Stuff\B\f.mp3)"), R"(Stuff\B\f)");
}

TEST(TitleInPath, IsTheWholePathWithoutAnyDash) {
    EXPECT_EQ(TitleInPath(R"(D:\New\f.mp3)"), R"(D:\New\f)");
}

TEST(TitleInName, IsTheNameWithoutItsEnding) {
    EXPECT_EQ(TitleInName(R"(D:\New\Song.MP3)"), "Song");
    EXPECT_EQ(TitleInName(R"(D:\New-Stuff\B\f.mp3)"), "f");
    EXPECT_EQ(TitleInName("f.mp3"), "f");
}

TEST(TitleInPath, LosesEveryEndingWhateverItsLetterCase) {
    EXPECT_EQ(TitleInPath(R"(D:\New\A - Song.MP3)"), "Song");
    EXPECT_EQ(TitleInPath(R"(D:\New\A - So.mp3ng.Mp3.mP3)"), "Song");
    EXPECT_EQ(TitleInPath(R"(D:\New\A - .mp.mp33)"), ".mp3");
    EXPECT_EQ(TitleInPath(R"(D:\New\A - mp3.mp4)"), "mp3.mp4");
}

TEST(TitleInPath, LosesBlanksBeforeTheEndingIsTakenOut) {
    EXPECT_EQ(TitleInPath("D:\\New\\A -   Song.mp3 "), "Song");
    EXPECT_EQ(TitleInPath(R"(D:\New\A - Song .mp3)"), "Song ");
    EXPECT_EQ(TitleInPath(R"(D:\New\A -.mp3)"), "");
}

class ReadTagIntoTest : public ::testing::Test {
  protected:
    AddedFile Read(std::string_view record) { return Read(support::TagOfRecord(record)); }
    AddedFile Read(const Tag& tag) {
        AddedFile file{.artist = "folder", .album = "inner", .title = "name"};
        ReadTagInto(file, tag, [this](std::string_view number) {
            asked = number;
            return number == "17" ? "Rock" : "";
        });
        return file;
    }

    std::string asked;
};

TEST_F(ReadTagIntoTest, TakesEverythingFromAFullTag) {
    const AddedFile file = Read("TAG|song|artist|album|1999|comment||7|17|");
    EXPECT_EQ(file.artist, "artist");
    EXPECT_EQ(file.album, "album");
    EXPECT_EQ(file.title, "song");
    EXPECT_EQ(file.track, 7);
    EXPECT_EQ(file.genre, "Rock");
}

TEST_F(ReadTagIntoTest, KeepsTheDefaultsWithoutATag) {
    const AddedFile file = Read("");
    EXPECT_EQ(file.artist, "folder");
    EXPECT_EQ(file.album, "inner");
    EXPECT_EQ(file.title, "name");
    EXPECT_EQ(file.track, 1);
    EXPECT_EQ(file.genre, "other");
    EXPECT_EQ(asked, "");
}

TEST_F(ReadTagIntoTest, KeepsTheDefaultOfEachEmptyPiece) {
    EXPECT_EQ(Read("TAG||artist|album|||||17|").title, "name");
    EXPECT_EQ(Read("TAG|song||album|||||17|").artist, "folder");
    EXPECT_EQ(Read("TAG|song|artist||||||17|").album, "inner");
    EXPECT_EQ(Read("TAG|song|artist|album|||||17|").track, 1);
}

TEST_F(ReadTagIntoTest, TakesBlanksAroundATextForPadding) {
    const AddedFile file = Read("TAG|song   | artist |       |1999   |||7|17|");
    EXPECT_EQ(file.title, "song");
    EXPECT_EQ(file.artist, "artist");
    EXPECT_EQ(file.album, "inner");
}

TEST_F(ReadTagIntoTest, CallsAGenreWithoutARowOther) {
    EXPECT_EQ(Read("TAG|song|artist|album|1999|comment||7|255|").genre, "other");
    EXPECT_EQ(asked, "255");
}

TEST_F(ReadTagIntoTest, TakesTheFirstTrackForWhatIsNoNumber) {
    EXPECT_EQ(Read("TAG|song|artist|album|1999|comment||A1|17|").track, 1);
    EXPECT_EQ(Read("TAG|song|artist|album|1999|comment|| 12 |17|").track, 12);
}

TEST_F(ReadTagIntoTest, RefusesATrackBeyondTheFieldsRange) {
    EXPECT_THROW(Read("TAG|song|artist|album|1999|comment||40000|17|"), Failure);
}

/// A "|" in a title is not told from the one behind it.
TEST_F(ReadTagIntoTest, TakesThePiecesBehindABarForTheNextFields) {
    Tag tag = support::TagOfRecord("TAG|song|artist|album|1999|comment||7|17|");
    tag.song = "so|ng";
    const AddedFile file = Read(tag);
    EXPECT_EQ(file.title, "so");
    EXPECT_EQ(file.artist, "ng");
    EXPECT_EQ(file.album, "artist");
    EXPECT_EQ(file.track, 1);
    EXPECT_EQ(asked, "7");
}

class RequireFileNamesTest : public ::testing::Test {
  protected:
    static std::string Refusal(const std::string& artist, const std::string& album,
                               const std::string& title) {
        try {
            RequireFileNames({.artist = artist, .album = album, .title = title}, R"(D:\New\f.mp3)");
        } catch (const Failure& failure) {
            return failure.what();
        }
        return "";
    }
};

TEST_F(RequireFileNamesTest, TakesWhatAFolderCanHold) {
    EXPECT_EQ(Refusal("Sigur Rós", "100% #1 [live]", "Don't & Don't"), "");
    EXPECT_EQ(Refusal("日本", "Žofie", "'"), "");
    EXPECT_EQ(Refusal(".hidden", "...And More", "Wait..."), "");
    EXPECT_EQ(Refusal("a", "b", "Song "), "");
}

TEST_F(RequireFileNamesTest, RefusesWhatLeadsElsewhere) {
    for (const char* const name : {"..", ".", "a\\b", "a/b", "..\\x", "C:", "\\\\nas\\x", ""}) {
        EXPECT_NE(Refusal(name, "b", "c"), "") << name;
        EXPECT_NE(Refusal("a", name, "c"), "") << name;
        EXPECT_NE(Refusal("a", "b", name), "") << name;
    }
}

TEST_F(RequireFileNamesTest, RefusesWhatWindowsCannotHold) {
    for (const std::string& name :
         {std::string("a\"b"), std::string("a*"), std::string("a?"), std::string("<a>"),
          std::string("a|b"), std::string("a\nb"), std::string("\x01"), std::string(256, 'x')}) {
        EXPECT_NE(Refusal(name, "b", "c"), "") << name;
        EXPECT_NE(Refusal("a", name, "c"), "") << name;
        EXPECT_NE(Refusal("a", "b", name), "") << name;
    }
    EXPECT_NE(Refusal("R.E.M.", "b", "c"), "");
    EXPECT_NE(Refusal("a", "b ", "c"), "");
}

TEST_F(RequireFileNamesTest, CountsTheEndingOfATitle) {
    EXPECT_EQ(Refusal("a", "b", std::string(251, 'x')), "");
    EXPECT_NE(Refusal("a", "b", std::string(252, 'x')), "");
}

TEST_F(RequireFileNamesTest, SaysWhatIsWrong) {
    EXPECT_EQ(Refusal("AC/DC", "b", "c"),
              R"(Bad file name or number: artist "AC/DC" of D:\New\f.mp3)");
    EXPECT_EQ(Refusal("a", "..", "c"), R"(Bad file name or number: album ".." of D:\New\f.mp3)");
    EXPECT_EQ(Refusal("a", "b", "c?"), R"(Bad file name or number: title "c?" of D:\New\f.mp3)");
}

}  // namespace
}  // namespace quillon
