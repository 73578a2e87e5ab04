#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "tests/platform/files_fixture.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class TextBatchTest : public FilesTest {
  protected:
    TextBatchTest() { folder_.MakeFolder("x"); }

    std::unique_ptr<TextBatch> Start() {
        return files_.CreateTexts([this](const Failure* failure) {
            told_.emplace_back(failure == nullptr ? "done" : failure->what());
        });
    }

    std::vector<std::string> told_;
};

TEST_F(TextBatchTest, GivesFilesTheirNamesWhenItIsClosed) {
    folder_.MakeFile("x/b.pla", "old");
    const auto batch = Start();
    batch->Write("D:\\x\\a.pla", "first");
    batch->Write("D:\\x\\b.pla", "second");
    EXPECT_THAT(FileNames("D:\\x"), ElementsAre("b.pla"));
    EXPECT_EQ(folder_.Content("x/b.pla"), "old");
    EXPECT_THAT(told_, IsEmpty());
    batch->Close();
    EXPECT_EQ(folder_.Content("x/a.pla"), "first");
    EXPECT_EQ(folder_.Content("x/b.pla"), "second");
    EXPECT_THAT(told_, ElementsAre("done", "done"));
    EXPECT_EQ(folder_.Count("x"), 2U);
    EXPECT_TRUE(files_.FileExists("D:\\X\\A.PLA"));
}

TEST_F(TextBatchTest, GivesManyFilesTheirNamesInBetween) {
    const auto batch = Start();
    for (int i = 0; i < 300; ++i)
        batch->Write("D:\\x\\" + std::to_string(i) + ".pla", std::to_string(i));
    EXPECT_THAT(told_, SizeIs(256));
    batch->Close();
    EXPECT_THAT(told_, SizeIs(300));
    EXPECT_EQ(folder_.Count("x"), 300U);
    EXPECT_EQ(folder_.Content("x/299.pla"), "299");
}

TEST_F(TextBatchTest, LeavesNothingOfWhatHasNoNameYet) {
    Start()->Write("D:\\x\\a.pla", "first");
    EXPECT_EQ(folder_.Count("x"), 0U);
    EXPECT_THAT(told_, IsEmpty());
}

TEST_F(TextBatchTest, TellsOfAFileThatCannotHaveItsNameAndGoesOn) {
    const auto batch = Start();
    for (const char* const name : {"a", "b", "c"})
        batch->Write(std::string("D:\\x\\") + name + ".pla", name);
    folder_.MakeFile("x/b.pla/inside");  // no file can take the place of such a folder
    batch->Close();
    EXPECT_THAT(told_, ElementsAre("done", HasSubstr("D:\\x\\b.pla"), "done"));
    EXPECT_EQ(folder_.Content("x/a.pla"), "a");
    EXPECT_EQ(folder_.Content("x/c.pla"), "c");
    EXPECT_EQ(folder_.Count("x"), 3U);
}

TEST_F(TextBatchTest, RefusesWhatCannotBeWrittenAtOnce) {
    const auto batch = Start();
    folder_.MakeFolder("x/b.pla");
    EXPECT_THROW(batch->Write("D:\\x\\b.pla", "second"), Failure);
    EXPECT_THROW(batch->Write("D:\\none\\a.pla", "first"), Failure);
    batch->Write("D:\\x\\c.pla", "third");
    batch->Close();
    EXPECT_THAT(told_, ElementsAre("done"));
}

POSIX_TEST_F(TextBatchTest, WritesWhatALinkLeadsTo) {
    folder_.MakeFile("elsewhere/real.pla", "old");
    std::filesystem::create_symlink(folder_ / "elsewhere/real.pla", folder_ / "x/a.pla");
    const auto batch = Start();
    batch->Write("D:\\x\\a.pla", "new");
    batch->Write("D:\\x\\b.pla", "other");
    batch->Close();
    EXPECT_EQ(folder_.Content("elsewhere/real.pla"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "x/a.pla"));
    EXPECT_THAT(told_, ElementsAre("done", "done"));
}

}  // namespace
}  // namespace quillon
