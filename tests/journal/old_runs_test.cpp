#include "app/journal/old_runs.h"

#include <filesystem>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <string>

#include "tests/outside/posix_test.h"
#include "tests/outside/temporary_folder.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

class OldRunsTest : public testing::Test {
  protected:
    /// A journal of so many days ago, number `number` of that day.
    std::string Make(int daysAgo, int number = 1) {
        std::string stamp = Stamp(daysAgo, number);
        folder_.MakeFile(stamp + ".jsonl", "{}");
        return stamp;
    }
    static std::string Stamp(int daysAgo, int number) {
        std::string stamp = SortableDateTimeText({Now.days - daysAgo});
        for (char& letter : stamp)
            letter = letter == ' ' ? '_' : letter == ':' ? '-' : letter;
        return number == 1 ? stamp : stamp + '-' + std::to_string(number);
    }
    bool IsThere(const std::string& name) const {
        return fs::exists(fs::symlink_status(folder_ / name));
    }
    void Clear() const { RemoveOldRuns(folder_.Path(), ".jsonl", Now); }

    static constexpr DateTime Now{46000.25};
    outside::TemporaryFolder folder_;
};

TEST_F(OldRunsTest, RemovesWhatIsBothOldAndNotAmongTheNewestHundred) {
    const std::string oldest = Make(400), old = Make(399), young = Make(59);
    folder_.MakeFile(oldest + "/1/AlbumPicker/index.asp");
    for (int number = 1; number <= 98; ++number)
        Make(100, number);
    Clear();
    EXPECT_FALSE(IsThere(oldest + ".jsonl"));
    EXPECT_FALSE(IsThere(oldest)) << "what was kept for it is of no use any more";
    EXPECT_TRUE(IsThere(old + ".jsonl")) << "it is one of the newest hundred";
    EXPECT_TRUE(IsThere(young + ".jsonl"));
}

TEST_F(OldRunsTest, KeepsEverythingOfTheLastSixtyDays) {
    for (int number = 1; number <= 150; ++number)
        Make(59, number);
    Clear();
    for (int number = 1; number <= 150; ++number)
        EXPECT_TRUE(IsThere(Stamp(59, number) + ".jsonl")) << number;
}

POSIX_TEST_F(OldRunsTest, LeavesWhatIsNoRunsOwn) {
    for (int number = 1; number <= 100; ++number)
        Make(100, number);
    folder_.MakeFile("2001-01-01_00-00-00.txt");
    folder_.MakeFile("2001-01-01_00-00-00 of mine.jsonl");
    folder_.MakeFile("mine.jsonl");
    folder_.MakeFile("elsewhere.jsonl");
    folder_.MakeFile("2001-01-02_00-00-00/mine");
    fs::create_symlink(folder_ / "elsewhere.jsonl", folder_ / "2001-01-01_00-00-00.jsonl");
    Clear();
    for (const char* const name :
         {"2001-01-01_00-00-00.txt", "2001-01-01_00-00-00 of mine.jsonl", "mine.jsonl",
          "elsewhere.jsonl", "2001-01-01_00-00-00.jsonl", "2001-01-02_00-00-00/mine"})
        EXPECT_TRUE(IsThere(name)) << name;
}

}  // namespace
}  // namespace quillon
