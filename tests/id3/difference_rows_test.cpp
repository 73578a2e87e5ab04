#include "id3/difference_table.h"
#include "tests/id3/verify_fixture.h"

/// What becomes of the rows of an earlier comparison.
namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DifferenceRowsTest : public VerifyTest {
  protected:
    /// What a run finds: a difference of each of these songs.
    void Find(const std::vector<std::string>& songs) {
        library.Database().ForgetStatements();
        library.clock.now.days += 1;
        DifferenceRows rows(*library.run.connection, library.clock.now);
        rows.Open();
        for (const std::string& song : songs)
            rows.Add("Alder", "First Light", song, {"Genre", "Rock", "Pop"});
        rows.Finish();
    }
    std::vector<std::string> Songs() {
        return library.Rows("SELECT Track FROM SpinnerID3Differences");
    }
    std::vector<std::string> Days() {
        return library.Rows("SELECT DISTINCT Int(UpdateTime) FROM SpinnerID3Differences");
    }
    std::string Today() const { return std::to_string(static_cast<int>(library.clock.now.days)); }
    std::size_t Written() {
        return library.Database().Count("Insert ") + library.Database().Count("Delete ") +
               library.Database().Count("DELETE");
    }
};

TEST_F(DifferenceRowsTest, StayAndGetTheTimeOfTheRunThatFindsThemAgain) {
    Find({"a", "b", "c"});
    Find({"a", "b", "c"});
    EXPECT_EQ(Written(), 0U);
    EXPECT_EQ(library.Database().Count("ReplaceDate SpinnerID3Differences"), 1U);
    EXPECT_THAT(Songs(), ElementsAre("a", "b", "c"));
    EXPECT_THAT(Days(), ElementsAre(Today()));
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(DifferenceRowsTest, GoWhereTheyAreNotFoundAgain) {
    Find({"a", "b", "c", "d", "e"});
    Find({"b", "c", "e"});
    EXPECT_EQ(library.Database().Count("Delete SpinnerID3Differences"), 2U);
    EXPECT_EQ(Written(), 2U);
    EXPECT_THAT(Songs(), ElementsAre("b", "c", "e"));
    EXPECT_THAT(Days(), ElementsAre(Today()));
    Find({});
    EXPECT_THAT(Songs(), IsEmpty());
}

TEST_F(DifferenceRowsTest, StandInTheOrderInWhichTheyAreFound) {
    Find({"b", "d", "f", "h"});
    Find({"b", "c", "d", "f", "h"});
    EXPECT_THAT(Songs(), ElementsAre("b", "c", "d", "f", "h"));
    Find({"d", "c", "b", "b"});
    EXPECT_THAT(Songs(), ElementsAre("d", "c", "b", "b"));
    Find({"d", "b", "b", "x"});
    EXPECT_THAT(Songs(), ElementsAre("d", "b", "b", "x"));
    EXPECT_THAT(Days(), ElementsAre(Today()));
    EXPECT_EQ(library.Faults(), "");
}

/// Small rows would fit into the room that large ones have left on pages before.
TEST_F(DifferenceRowsTest, OfManySizesKeepTheirOrderAndStay) {
    std::vector<std::string> songs;
    songs.reserve(300);
    for (std::size_t i = 0; i < 300; ++i)
        songs.push_back(std::to_string(i) + std::string(i * 37 % 200, 'x'));
    Find(songs);
    EXPECT_EQ(Songs(), songs);
    Find(songs);
    EXPECT_EQ(Written(), 0U);
    EXPECT_EQ(Songs(), songs);
    EXPECT_THAT(Days(), ElementsAre(Today()));
}

TEST_F(DifferenceRowsTest, OfOtherTimesAndOtherHandsGo) {
    Find({"a", "b"});
    library.Execute("INSERT INTO SpinnerID3Differences (Track) VALUES ('no time')");
    library.Execute(
        "INSERT INTO SpinnerID3Differences (UpdateTime, Track) VALUES (#1/2/2003#, 'old')");
    Find({"a", "b"});
    EXPECT_THAT(Songs(), ElementsAre("a", "b"));
    EXPECT_THAT(Days(), ElementsAre(Today()));
}

TEST_F(DifferenceRowsTest, AreToldFromThoseThatHaveTheTimeOfTheRunAlready) {
    Find({"a", "b"});
    library.Execute("UPDATE SpinnerID3Differences SET UpdateTime=UpdateTime+1 WHERE Track='b'");
    Find({"a", "b"});
    EXPECT_THAT(Songs(), ElementsAre("a", "b"));
    EXPECT_THAT(Days(), ElementsAre(Today()));
}

TEST_F(DifferenceRowsTest, OfARunInTheSameMomentStay) {
    Find({"a", "b"});
    library.clock.now.days -= 1;
    Find({"a", "b"});
    EXPECT_EQ(Written(), 0U);
    EXPECT_THAT(Songs(), ElementsAre("a", "b"));
}

TEST_F(DifferenceRowsTest, AreThoseThatWereFoundUpToAnAbort) {
    support::RawTag tag = TagOf("Dawn");
    tag.artist = "Cedar";
    AddFile("Alder - Dawn.mp3", tag);
    library.AddFile(R"(Birch\Bark\Birch - Dawn.mp3)", tag);
    Verify();
    EXPECT_THAT(library.Rows("SELECT DISTINCT Artist FROM SpinnerID3Differences"),
                ElementsAre("Alder", "Birch"));
    library.window.onEvents = [this](const FormState& state) {
        if (state.aItem.ends_with("Birch")) library.run.AbortRequested = true;
    };
    Verify();
    EXPECT_THAT(library.Rows("SELECT DISTINCT Artist FROM SpinnerID3Differences"),
                ElementsAre("Alder"));
}

TEST_F(DifferenceRowsTest, GoWhereThereIsNoLibraryToCompareWith) {
    Find({"a"});
    library.run.settings.LibraryRoot = R"(D:\Gone)";
    Verify();
    EXPECT_THAT(Songs(), IsEmpty());
}

}  // namespace
}  // namespace quillon
