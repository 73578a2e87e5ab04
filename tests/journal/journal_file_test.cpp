#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/journal/journal_file_fixture.h"
#include "tests/outside/posix_test.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

TEST_F(JournalFileTest, IsNamedByTheTimeAndNeverTakesANameThatIsTaken) {
    const JournalFile one(changes_, clock_);
    EXPECT_EQ(one.Stamp(), "2023-03-15_12-00-00");
    EXPECT_EQ(FreeStamp(changes_, clock_), "2023-03-15_12-00-00-2");
    fs::create_directory(changes_ / "2023-03-15_12-00-00-2");
    EXPECT_EQ(FreeStamp(changes_, clock_), "2023-03-15_12-00-00-3");
    const JournalFile two(changes_, clock_);
    EXPECT_EQ(two.Stamp(), "2023-03-15_12-00-00-3") << "a folder of that name keeps something";
}

TEST_F(JournalFileTest, ComesBehindAllOthersWhereTheClockWasPutBack) {
    fs::create_directory(changes_);
    const auto make = [this](const char* name) { std::ofstream(changes_ / name) << "{}\n"; };
    make("2023-03-15_12-50-00.jsonl");
    make("notes.jsonl");
    EXPECT_EQ(FreeStamp(changes_, clock_), "2023-03-15_12-50-00-2");
    make("2023-03-15_12-50-00-9.jsonl");
    JournalFile journal(changes_, clock_);
    journal.Note(Rename());
    EXPECT_EQ(journal.Stamp(), "2023-03-15_12-50-00-10");
    const JournalFile next(changes_, clock_);
    EXPECT_EQ(next.Stamp(), "2023-03-15_12-50-00-11");
}

POSIX_TEST_F(JournalFileTest, FollowsNoLink) {
    fs::create_directory(folder_.Path() / "elsewhere");
    fs::create_directory_symlink(folder_.Path() / "elsewhere", changes_);
    EXPECT_THROW(JournalFile(changes_, clock_), Failure);
    EXPECT_TRUE(fs::is_empty(folder_.Path() / "elsewhere"));
    fs::remove(changes_);
    fs::create_directory(changes_);
    fs::create_symlink(folder_.Path() / "target", changes_ / "2023-03-15_12-00-00.jsonl");
    JournalFile journal(changes_, clock_);
    journal.Note(Rename());
    EXPECT_EQ(journal.Stamp(), "2023-03-15_12-00-00-2");
    EXPECT_FALSE(fs::exists(folder_.Path() / "target"));
}

TEST_F(JournalFileTest, HoldsARecordBeforeItMayHappen) {
    JournalFile journal(changes_, clock_);
    const std::vector<ChangeRecord> records{
        RunStarted{.stamp = journal.Stamp(), .version = "1", .mode = ""}, Row(1), Rename()};
    for (const ChangeRecord& record : records)
        journal.Note(record);
    EXPECT_EQ(Read(journal.Stamp()), records);
    journal.Note(Row(2));
    journal.MakeDurable();
    EXPECT_EQ(Read(journal.Stamp()).size(), 4U);
    journal.Note(Row(3));
    journal.Note(RowsSaved{});
    EXPECT_EQ(Read(journal.Stamp()).size(), 6U);
}

TEST_F(JournalFileTest, WritesAnErrorOfTheLogAtOnceAndARemarkWithWhatComesNext) {
    JournalFile journal(changes_, clock_);
    journal.Note(LogLine{.isError = false, .text = "a remark"});
    EXPECT_TRUE(Read(journal.Stamp()).empty());
    journal.Note(LogLine{.isError = true, .text = "an error"});
    EXPECT_EQ(Read(journal.Stamp()).size(), 2U);
    journal.Note(LogLine{.isError = false, .text = "the last remark"});
    journal.Note(RunEnded{.outcome = "completed"});
    EXPECT_EQ(Read(journal.Stamp()).size(), 4U);
}

TEST_F(JournalFileTest, TellsItsListenerWhatItTakes) {
    std::vector<ChangeRecord> told;
    JournalFile journal(changes_, clock_,
                        [&told](const ChangeRecord& record) { told.push_back(record); });
    journal.Note(Row(1));
    journal.Note(Rename());
    journal.Remark(LogLine{true, "x"});
    EXPECT_EQ(told, Read(journal.Stamp()));
    EXPECT_EQ(told.size(), 3U);
}

TEST_F(JournalFileTest, KeepsFewRowsInMemoryHoweverManyThereAre) {
    JournalFile journal(changes_, clock_);
    const std::size_t line = ToLine(Row(10'000)).size();
    constexpr std::int64_t Rows = 20'000;
    for (std::int64_t i = 0; i < Rows; ++i)
        journal.Note(Row(i));
    EXPECT_GT(Size(journal), (Rows - 1000) * (line - 5));
    journal.MakeDurable();
    EXPECT_EQ(Read(journal.Stamp()).size(), std::size_t{Rows});
}

POSIX_TEST_F(JournalFileTest, RemovesWhatOtherRunsHaveKeptOfTheSameNameAndNothingElse) {
    for (const char* const name :
         {"2023-03-15_12-00-00/1/Pages", "2023-03-15_12-00-00/2/big",
          "2023-03-15_12-00-00-2/1/Pages", "2024-01-01_00-00-00/1/Pages", "mine/1/Pages"})
        fs::create_directories(changes_ / name);
    fs::create_directories(folder_.Path() / "elsewhere/1/Pages");
    fs::create_directory_symlink(folder_.Path() / "elsewhere", changes_ / "2022-01-01_00-00-00");
    RemoveOlderContent(changes_, "2024-01-01_00-00-00");
    EXPECT_FALSE(fs::exists(changes_ / "2023-03-15_12-00-00/1"));
    EXPECT_TRUE(fs::exists(changes_ / "2023-03-15_12-00-00/2/big"));
    EXPECT_FALSE(fs::exists(changes_ / "2023-03-15_12-00-00-2"));
    EXPECT_TRUE(fs::exists(changes_ / "2024-01-01_00-00-00/1/Pages"));
    EXPECT_TRUE(fs::exists(changes_ / "mine/1/Pages"));
    EXPECT_TRUE(fs::exists(folder_.Path() / "elsewhere/1/Pages"));
}

}  // namespace
}  // namespace quillon
