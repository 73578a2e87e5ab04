#include "app/journal/journal_file.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <vector>

#include "app/journal/journal_lines.h"
#include "platform/failure.h"
#include "tests/outside/temporary_folder.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

class StoppedClock : public Clock {
  public:
    DateTime Now() const override { return {45000.5}; }
    std::uint32_t Nanoseconds() const override { return 0; }
};

/// Files of this process cannot grow beyond a size, as on a disk that is full.
class FullDisk {
  public:
    explicit FullDisk(rlim_t size) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{.rlim_cur = size, .rlim_max = before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

  private:
    rlimit before_{};
    void (*handler_)(int);
};

class JournalFileTest : public testing::Test {
  protected:
    static ChangeRecord Row(std::int64_t number) {
        return RowChange{RowChange::Kind::Changed,
                         "Tracks",
                         {{"ID", number}},
                         {{"Title", std::string(100, 'a'), std::string(100, 'b')}}};
    }
    static ChangeRecord Rename() {
        return FileChange{
            .number = 1, .kind = FileChange::Kind::Moved, .path = R"(D:\a)", .target = R"(D:\b)"};
    }

    /// What somebody else reads; each line has to be a whole record.
    std::vector<ChangeRecord> Read(const std::string& stamp) const {
        std::vector<ChangeRecord> records;
        std::ifstream file(changes_ / (stamp + ".jsonl"));
        for (std::string line; std::getline(file, line);)
            records.push_back(FromLine(line));
        return records;
    }
    std::uintmax_t Size(const JournalFile& journal) const {
        return fs::file_size(changes_ / (journal.Stamp() + ".jsonl"));
    }

    outside::TemporaryFolder folder_;
    fs::path changes_ = folder_.Path() / "Changes";
    StoppedClock clock_;
};

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

TEST_F(JournalFileTest, FollowsNoLink) {
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

TEST_F(JournalFileTest, TakesNoMoreThanItsLinesOnTheDiskWhenItIsClosed) {
    std::string stamp;
    {
        JournalFile journal(changes_, clock_);
        journal.Note(Rename());
        stamp = journal.Stamp();
    }
    struct stat facts{};
    ASSERT_EQ(stat((changes_ / (stamp + ".jsonl")).c_str(), &facts), 0);
    EXPECT_LT(facts.st_blocks * 512, 65536);
}

TEST_F(JournalFileTest, RefusesWhatIsToHappenOnAFullDiskAndStillTakesWhatHas) {
    JournalFile journal(changes_, clock_);
    journal.Note(RunStarted{.stamp = journal.Stamp(), .version = "1", .mode = ""});
    const FullDisk full(3'000'000);
    std::int64_t noted = 0;
    EXPECT_THROW(for (;; ++noted) journal.Note(Row(noted)), Failure);
    EXPECT_GT(noted, 1000);
    EXPECT_NE(journal.Trouble(), "");
    EXPECT_THROW(journal.Note(Rename()), Failure);
    EXPECT_THROW(journal.MakeDurable(), Failure) << "no rows may reach the database";
    journal.Note(FileChangeFailed{1, "full"});
    journal.Remark(RunEnded{.outcome = "failed", .status = 1});
    const std::vector<ChangeRecord> records = Read(journal.Stamp());
    EXPECT_LE(records.size(), static_cast<std::size_t>(noted) + 3) << "nothing behind a gap";
    EXPECT_TRUE(std::holds_alternative<FileChangeFailed>(records.at(records.size() - 2)));
    EXPECT_TRUE(std::holds_alternative<RunEnded>(records.back()));
}

TEST_F(JournalFileTest, RefusesForGoodOnceItHasRefused) {
    JournalFile journal(changes_, clock_);
    {
        const FullDisk full(10);
        EXPECT_THROW(journal.Note(Rename()), Failure);
    }
    EXPECT_THROW(journal.Note(Rename()), Failure) << "there is room again, and a gap";
}

TEST_F(JournalFileTest, LeavesNoEmptyFileWhereItCannotEvenStart) {
    const FullDisk full(10);
    {
        JournalFile journal(changes_, clock_);
        EXPECT_THROW(journal.Note(Rename()), Failure);
    }
    EXPECT_TRUE(fs::is_empty(changes_));
}

TEST_F(JournalFileTest, RemovesWhatOtherRunsHaveKeptOfTheSameNameAndNothingElse) {
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
