#include "database/mark_snapshot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "platform/failure.h"
#include "tests/support/fakes.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;

constexpr const char* Path = R"(D:\jukebox.mdb.marks)";

class MarkSnapshotTest : public ::testing::Test {
  protected:
    MarkSnapshotTest() {
        WriteMarkSnapshot(
            files, Path,
            MarkSnapshot({{7, 3, 111}, {2, std::nullopt, 4294967295U}},
                         {{5, -1, 7, 0}, {4, 32767, 7, 99}, {9, std::nullopt, 2, 1}}));
        text = files.Content(Path);
    }

    std::optional<MarkSnapshot> ReadText(const std::string& content) {
        files.AddFile(Path, content);
        return ReadMarkSnapshot(files, Path);
    }

    fakes::Calls calls;
    fakes::FakeFiles files{calls};
    std::string text;
};

TEST_F(MarkSnapshotTest, ReadsWhatItWrote) {
    const auto snapshot = ReadText(text);
    ASSERT_TRUE(snapshot);
    EXPECT_THAT(snapshot->Albums(),
                ElementsAre(MarkedAlbum{2, std::nullopt, 4294967295U}, MarkedAlbum{7, 3, 111}));
    EXPECT_THAT(snapshot->Tracks(),
                ElementsAre(MarkedTrack{4, 32767, 7, 99}, MarkedTrack{5, -1, 7, 0},
                            MarkedTrack{9, std::nullopt, 2, 1}));
}

TEST_F(MarkSnapshotTest, FindsRowsByTheirId) {
    const auto snapshot = ReadText(text);
    ASSERT_TRUE(snapshot);
    EXPECT_EQ(snapshot->FindAlbum(7)->count, 3);
    EXPECT_EQ(snapshot->FindTrack(5)->number, -1);
    EXPECT_EQ(snapshot->FindTrack(9)->number, std::nullopt);
    EXPECT_EQ(snapshot->FindTrack(6), nullptr);
    EXPECT_EQ(snapshot->FindAlbum(100), nullptr);
}

TEST_F(MarkSnapshotTest, KeepsARowOnceThatIsNamedTwice) {
    const MarkSnapshot snapshot({}, {{5, 1, 7, 0}, {5, 1, 8, 0}});
    EXPECT_EQ(snapshot.Tracks().size(), 1U);
}

TEST_F(MarkSnapshotTest, IsNoSnapshotWhenItsEndIsMissingAnywhere) {
    // The last line end may be missing as in any text file.
    for (std::size_t length = 0; length + 2 < text.size(); ++length)
        EXPECT_FALSE(ReadText(text.substr(0, length))) << length;
}

TEST_F(MarkSnapshotTest, IsNoSnapshotWhenALineIsMissing) {
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = text.find('\n', begin) + 1;
        EXPECT_FALSE(ReadText(text.substr(0, begin) + text.substr(end))) << begin;
        begin = end;
    }
}

TEST_F(MarkSnapshotTest, IsNoSnapshotWithAnythingUnexpectedInIt) {
    EXPECT_FALSE(ReadText("[NPFrame]\r\nReconcile=1\r\n"));
    EXPECT_FALSE(ReadText(text + "Album 1 2 3\r\n"));
    EXPECT_FALSE(ReadText(text + text));
    for (const char* line : {"Album x 3 111", "Album 7 3", "Album 7 3 111 4", "Album  7 3 111", "",
                             "Disc 1 2 3", "Album 7 3x 111", "Album 99999999999 3 111"}) {
        std::string changed = text;
        const std::string original = "Album 7 3 111";
        changed.replace(changed.find(original), original.size(), line);
        EXPECT_FALSE(ReadText(changed)) << line;
    }
}

TEST_F(MarkSnapshotTest, FailsWhenItsFileCannotBeRead) {
    calls.Refuse("OpenText " + std::string(Path), FailureNumber::PermissionDenied, Path);
    EXPECT_THROW(ReadMarkSnapshot(files, Path), Failure);
}

}  // namespace
}  // namespace quillon
