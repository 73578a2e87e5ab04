#include <gtest/gtest.h>

#include "tests/app/check_fixture.h"

namespace quillon {
namespace {

class CheckMovedMusicTest : public CheckFixture {
  protected:
    /// What `check` tells in the line that begins with this word.
    std::string Told(const std::string& word) const {
        const std::string out = Check().out;
        const std::size_t start = out.find("\n" + word) + 1;
        return out.substr(start, out.find('\n', start) - start);
    }

    void Replace(const std::string& line, const std::string& other) const {
        std::string host = Read("shelf/host.ini");
        host.replace(host.find(line), line.size(), other);
        Write("shelf/host.ini", host);
    }
};

TEST_F(CheckMovedMusicTest, TellsWhatBecomesOfIt) {
    EXPECT_EQ(Told("Moved files"), "Moved files      followed: rows go with the sound");
    EXPECT_EQ(Told("Missing files"), "Missing files    their rows are kept for 14 days");
    Replace("FollowMovedFiles=1\n", "");
    Replace("KeepDays=14\n", "");
    EXPECT_EQ(Told("Moved files"),
              "Moved files      not followed: rows go when their files have other names");
    EXPECT_EQ(Told("Missing files"), "Missing files    their rows are removed at once");
    EXPECT_EQ(Cautions(), "");
}

TEST_F(CheckMovedMusicTest, FindsValuesThatAreNone) {
    Replace("FollowMovedFiles=1\n", "FollowMovedFiles=maybe\nColour=red\n");
    Replace("KeepDays=14\n", "KeepDays=2.5\n");
    const std::string cautions = Cautions();
    EXPECT_NE(cautions.find("FollowMovedFiles in [Library] of host.ini is \"maybe\", which is "
                            "neither yes nor no; moved files are not followed"),
              std::string::npos)
        << cautions;
    EXPECT_NE(cautions.find("host.ini has Colour=red in [Library], which nothing reads"),
              std::string::npos)
        << cautions;
    EXPECT_NE(cautions.find("KeepDays in [Missing] of host.ini is \"2.5\", which is not a whole "
                            "number of 0 or more and counts as 2"),
              std::string::npos)
        << cautions;
}

}  // namespace
}  // namespace quillon
