// What becomes of playlists whose songs move, or are missing for a while.

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "playlists/capture.h"
#include "playlists/refresh.h"
#include "tests/support/real_library.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// Two albums of three songs, A and B, and a list of songs of both.
class MovedSongsTest : public ::testing::Test {
  protected:
    MovedSongsTest() {
        library.run.movedMusic = {.FollowMovedFiles = true, .KeepDays = 14};
        library.run.settings.PlayListPath = R"(D:\Lists\)";
        fs::create_directory(Lists());
        int minute = 0;
        for (const char* const album : {"A", "B"}) {
            for (const char* const song : {"1", "2", "3"}) {
                const std::string name = std::string(album) + song;
                library.AddFile("Ann\\" + std::string(album) + "\\" + name + ".mp3",
                                "sound of " + name, ++minute);
            }
        }
        library.Reconcile();
        library.Reconcile();
        const auto identifiers = library.Rows("SELECT CDJID FROM Albums ORDER BY Title");
        a = identifiers.at(0);
        b = identifiers.at(1);
        Write({a + " 0", a + " 1", b + " 2", a + " 2"});
        library.host.log.clear();
    }

    fs::path Lists() const { return library.Folder() / "Lists"; }
    fs::path List() const { return Lists() / "Mine.pla"; }

    void Write(const std::vector<std::string>& lines) const {
        std::ofstream file(List(), std::ios::binary);
        file << "CDJ Playlist V1.1\r\n";
        for (const std::string& line : lines)
            file << line << "\r\n";
    }

    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        std::ifstream file(List(), std::ios::binary);
        for (std::string line; std::getline(file, line);)
            lines.push_back(line.substr(0, line.size() - 1));
        if (!lines.empty()) lines.erase(lines.begin());
        return lines;
    }

    void Run() {
        BuildORsRecordset(library.run);
        library.run.ForgetTables();
        CapturePlaylists(library.run);
        library.Reconcile();
        RefreshPlaylist(library.run);
    }

    void Move(const std::string& from, const std::string& to) {
        fs::create_directories(library.Music(to).parent_path());
        fs::rename(library.Music(from), library.Music(to));
    }

    fs::path Missing() const { return library.DatabaseFile().string() + ".missing"; }

    support::RealLibrary library;
    std::string a, b;  ///< identifiers
};

TEST_F(MovedSongsTest, ListsNameTheSongsOfAnAlbumThatHasMoved) {
    Move(R"(Ann\A)", R"(Bob\C)");
    Run();
    EXPECT_THAT(Lines(), ElementsAre(a + " 0", a + " 1", b + " 2", a + " 2"));
    EXPECT_EQ(library.Rows("SELECT CDJID FROM Albums WHERE Artist='Bob' AND Title='C'"),
              std::vector{a});
}

TEST_F(MovedSongsTest, ListsNameASongWhereItHasGone) {
    Move(R"(Ann\A\A2.mp3)", R"(Ann\B\A2.mp3)");
    Run();
    // By age it comes before those that are there.
    EXPECT_THAT(Lines(), ElementsAre(a + " 0", b + " 0", b + " 3", a + " 1"));
}

TEST_F(MovedSongsTest, ListsNameSongsWhoseAlbumHasEnded) {
    for (const char* const song : {"A1", "A2", "A3"})
        Move(std::string(R"(Ann\A\)") + song + ".mp3", std::string(R"(Ann\B\)") + song + ".mp3");
    Run();
    EXPECT_THAT(library.Rows("SELECT Title FROM Albums"), ElementsAre("B"));
    EXPECT_THAT(Lines(), ElementsAre(b + " 0", b + " 1", b + " 5", b + " 2"));
}

TEST_F(MovedSongsTest, ListsGetTheirEntriesBackWhenTheSongsReturn) {
    Move(R"(Ann\A\A2.mp3)", "../away/A2.mp3");
    Move(R"(Ann\B\B3.mp3)", "../away/B3.mp3");
    Run();
    EXPECT_THAT(Lines(), ElementsAre(a + " 0", a + " 1"));
    EXPECT_TRUE(fs::exists(Missing()));
    EXPECT_THAT(library.host.log, Contains("Quillon: Playlist Mine.pla, " + a +
                                           " 1 is taken out until its file is "
                                           "back"));
    Run();
    EXPECT_THAT(Lines(), ElementsAre(a + " 0", a + " 1"));
    Move("../away/B3.mp3", R"(Ann\B\B3.mp3)");
    Run();
    EXPECT_THAT(Lines(), ElementsAre(a + " 0", b + " 2", a + " 1"));
    Move("../away/A2.mp3", R"(Ann\A\A2.mp3)");
    Run();
    EXPECT_THAT(Lines(), ElementsAre(a + " 0", a + " 1", b + " 2", a + " 2"));
    EXPECT_THAT(library.host.log,
                Contains("Quillon: Playlist Mine.pla, " + a + " 1 is back because its file is"));
    EXPECT_FALSE(fs::exists(Missing()));
}

TEST_F(MovedSongsTest, ListsStayWhileAllTheirSongsAreMissing) {
    Write({a + " 0"});
    Move(R"(Ann\A\A1.mp3)", "../away/A1.mp3");
    Run();
    ASSERT_TRUE(fs::exists(List()));
    EXPECT_THAT(Lines(), IsEmpty());
    Run();
    ASSERT_TRUE(fs::exists(List()));
    Move("../away/A1.mp3", R"(Ann\A\A1.mp3)");
    Run();
    EXPECT_THAT(Lines(), ElementsAre(a + " 0"));
    EXPECT_EQ(library.run.removals.Of(Removable::Playlists).count, 0U);
}

TEST_F(MovedSongsTest, ListsLoseTheirEntriesWhenTheTimeIsOver) {
    Move(R"(Ann\A\A2.mp3)", "../away/A2.mp3");
    Run();
    library.clock.now.days += 15;
    Run();
    Move("../away/A2.mp3", R"(Ann\A\A2.mp3)");
    Run();
    EXPECT_THAT(Lines(), ElementsAre(a + " 0", b + " 2", a + " 2"));
    EXPECT_FALSE(fs::exists(Missing()));
}

/// The run ends right before it rewrites the list.
TEST_F(MovedSongsTest, ListsHaveEachEntryOnceAfterARunThatWasInterrupted) {
    Move(R"(Ann\A\A2.mp3)", "../away/A2.mp3");
    const auto before = Lines();
    BuildORsRecordset(library.run);
    CapturePlaylists(library.run);
    library.Reconcile();
    library.RealFiles().beforeChange = [] {
        throw Failure(FailureNumber::DiskFull, "the disk is full");
    };
    RefreshPlaylist(library.run);
    library.RealFiles().beforeChange = [] {};
    EXPECT_EQ(Lines(), before);
    Run();
    EXPECT_THAT(Lines(), ElementsAre(a + " 0", b + " 2", a + " 1"));
    Move("../away/A2.mp3", R"(Ann\A\A2.mp3)");
    Run();
    EXPECT_THAT(Lines(), ElementsAre(a + " 0", a + " 1", b + " 2", a + " 2"));
}

/// The run ends when rows have followed, before the playlists are refreshed.
TEST_F(MovedSongsTest, ListsNameTheirSongsAfterARunThatWasInterrupted) {
    Move(R"(Ann\A\A1.mp3)", R"(Bob\D\A1.mp3)");
    Move(R"(Ann\A\A2.mp3)", R"(Bob\D\A2.mp3)");
    BuildORsRecordset(library.run);
    CapturePlaylists(library.run);
    library.Reconcile();
    Run();
    const auto d = library.Rows("SELECT CDJID FROM Albums WHERE Title='D'").at(0);
    EXPECT_THAT(Lines(), ElementsAre(d + " 0", d + " 1", b + " 2", a + " 0"));
}

}  // namespace
}  // namespace quillon
