#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;

/// Three artists with a song each, whose numbers are wrong.
class SavingTest : public ::testing::Test {
  protected:
    SavingTest() {
        for (const std::string artist : {"Ann", "Bob", "Cee"}) {
            library.AddFile(artist + R"(\One\a.mp3)");
            library.AddAlbumRow("252E671073EC000" + std::to_string(++albums_), artist, "One", 1);
            library.AddTrackRow("252E671073EC000" + std::to_string(albums_), 7,
                                R"(D:\Music\)" + artist + R"(\One\a.mp3)", "a");
        }
        library.Execute("UPDATE Tracks SET Artist='Ann' WHERE ID=1");
        library.Execute("UPDATE Tracks SET Artist='Bob' WHERE ID=2");
        library.Execute("UPDATE Tracks SET Artist='Cee' WHERE ID=3");
    }

    /// Lets an artist take some seconds, and notes what had been written when each one began.
    void ReconcileWith(double seconds) {
        library.window.onEvents = [this, seconds](const FormState& state) {
            constexpr std::string_view Artist = " for Artist ";
            const std::size_t at = state.aItem.find(Artist);
            if (at == std::string::npos) return;
            library.clock.now.days += seconds / (24 * 60 * 60);
            written[state.aItem.substr(at + Artist.size())] =
                library.Database().Count("Update Tracks");
        };
        library.Database().ForgetStatements();
        library.Reconcile();
    }

    support::TestLibrary library;
    std::map<std::string, std::size_t> written;  ///< tracks, by artist

  private:
    int albums_ = 0;
};

TEST_F(SavingTest, HappensEveryFewSecondsOfALongWalk) {
    ReconcileWith(3);
    EXPECT_EQ(written, (std::map<std::string, std::size_t>{{"Ann", 0}, {"Bob", 0}, {"Cee", 2}}));
    EXPECT_THAT(library.Rows("SELECT Track FROM Tracks ORDER BY ID"), ElementsAre("1", "1", "1"));
    EXPECT_EQ(library.Database().Count("Update Tracks"), 3U) << "each number once";
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(SavingTest, WaitsForTheEndOfAShortWalk) {
    ReconcileWith(0.5);
    EXPECT_EQ(written, (std::map<std::string, std::size_t>{{"Ann", 0}, {"Bob", 0}, {"Cee", 0}}));
    EXPECT_EQ(library.Database().Count("Update Tracks"), 3U);
}

/// What has been saved by then, too.
TEST_F(SavingTest, IsTakenBackWhereNothingMayBeSweptInTheEnd) {
    library.AddAlbumRow("252E671073EC0009", "Zoe", "One", 20);
    for (int song = 1; song <= 60; ++song) {
        library.AddTrackRow("252E671073EC0009", song,
                            R"(D:\Music\Zoe\One\)" + std::to_string(song) + ".mp3", "z");
    }
    ReconcileWith(3);
    EXPECT_TRUE(library.run.removals.Braked());
    EXPECT_THAT(library.Rows("SELECT Track FROM Tracks WHERE ID<4 ORDER BY ID"),
                ElementsAre("7", "7", "7"));
    EXPECT_EQ(library.Database().Count("Update Tracks"), 4U);
}

}  // namespace
}  // namespace quillon
