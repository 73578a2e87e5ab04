#include "database/snapshot_file.h"

#include <array>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/fakes.h"

namespace quillon {
namespace {

constexpr std::array<std::string_view, 2> Kinds{"Name", "Number"};
constexpr SnapshotFormat Format{.title = "Sample 1", .kinds = Kinds};
constexpr const char* SnapshotPath = R"(D:\sample)";

class SnapshotFileTest : public ::testing::Test {
  protected:
    /// What a file of this content says; "not whole" if it does not count.
    std::string Read(const std::string& content) {
        files.AddFile(SnapshotPath, content);
        std::string told;
        const bool whole =
            ReadSnapshot(files, SnapshotPath, Format, [&](auto kind, SnapshotLine& line) {
                told += std::string(kind) + ":";
                if (kind == "Name") {
                    told += line.Text() + ";";
                } else {
                    const auto number = line.WholeOrNull<std::int64_t>();
                    told += (number ? std::to_string(*number) : "none") + ";";
                }
            });
        return whole ? told : "not whole";
    }

    fakes::Calls calls;
    fakes::FakeFiles files{calls};
};

TEST_F(SnapshotFileTest, IsReadAsItWasWritten) {
    SnapshotWriter writer(files, SnapshotPath, Format);
    writer.Line("Name").Text("A b%c\r\nÖ\x7F");
    writer.Line("Name").Text("");
    writer.Line("Number").Whole(std::numeric_limits<std::int64_t>::min());
    writer.Line("Number").Whole(std::nullopt);
    writer.Close();
    const std::string content = files.Content(SnapshotPath);
    EXPECT_EQ(content,
              "Sample 1\r\nName A%20b%25c%0D%0A%C3%96%7F\r\nName \r\n"
              "Number -9223372036854775808\r\nNumber Null\r\nEnd 2 2\r\n");
    EXPECT_EQ(Read(content), "Name:A b%c\r\nÖ\x7F;Name:;Number:-9223372036854775808;Number:none;");
}

TEST_F(SnapshotFileTest, MayHoldNoLines) {
    SnapshotWriter(files, SnapshotPath, Format).Close();
    EXPECT_EQ(Read(files.Content(SnapshotPath)), "");
}

TEST_F(SnapshotFileTest, IsNotThereBeforeItIsWhole) {
    SnapshotWriter writer(files, SnapshotPath, Format);
    writer.Line("Name").Text("x");
    EXPECT_FALSE(files.FileExists(SnapshotPath));
}

TEST_F(SnapshotFileTest, DoesNotCountWhereAnythingIsWrong) {
    EXPECT_EQ(Read("Sample 1\r\nName x\r\nEnd 1 0\r\n"), "Name:x;");
    for (const char* content : {
             "",
             "Sample 2\r\nName x\r\nEnd 1 0\r\n",
             "Sample 1\r\n",
             "Sample 1\r\nName x\r\n",
             "Sample 1\r\nName x\r\nEnd 1\r\n",
             "Sample 1\r\nName x\r\nEnd 2 0\r\n",
             "Sample 1\r\nName x\r\nEnd 1 0\r\nName y\r\n",
             "Sample 1\r\nName x y\r\nEnd 1 0\r\n",
             "Sample 1\r\nName %4\r\nEnd 1 0\r\n",
             "Sample 1\r\nName %4x\r\nEnd 1 0\r\n",
             "Sample 1\r\nName %-1\r\nEnd 1 0\r\n",
             "Sample 1\r\nOther x\r\nEnd 0 0\r\n",
             "Sample 1\r\nNumber x\r\nEnd 0 1\r\n",
             "Sample 1\r\nNumber 1x\r\nEnd 0 1\r\n",
             "Sample 1\r\nNumber\r\nEnd 0 1\r\n",
             "Sample 1\r\nNumber 9223372036854775808\r\nEnd 0 1\r\n",
         })
        EXPECT_EQ(Read(content), "not whole") << content;
}

TEST(Fingerprint, TellsTextsApartAndTakesThemInPieces) {
    EXPECT_EQ(Fingerprint(R"(D:\a.mp3)"), Fingerprint(R"(D:\a.mp3)"));
    EXPECT_NE(Fingerprint(R"(D:\a.mp3)"), Fingerprint(R"(D:\b.mp3)"));
    EXPECT_NE(Fingerprint(""), Fingerprint("a"));
    EXPECT_EQ(Fingerprint("b", Fingerprint("a")), Fingerprint("ab"));
}

}  // namespace
}  // namespace quillon
