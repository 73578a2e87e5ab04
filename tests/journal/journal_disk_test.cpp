// A journal on a disk that is full, and what it takes of one.
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

#include "tests/journal/journal_file_fixture.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

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

using JournalDiskTest = JournalFileTest;

TEST_F(JournalDiskTest, TakesNoMoreThanItsLinesOnTheDiskWhenItIsClosed) {
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

TEST_F(JournalDiskTest, RefusesWhatIsToHappenOnAFullDiskAndStillTakesWhatHas) {
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

TEST_F(JournalDiskTest, RefusesForGoodOnceItHasRefused) {
    JournalFile journal(changes_, clock_);
    {
        const FullDisk full(10);
        EXPECT_THROW(journal.Note(Rename()), Failure);
    }
    EXPECT_THROW(journal.Note(Rename()), Failure) << "there is room again, and a gap";
}

TEST_F(JournalDiskTest, HasNoEndWhereItTellsAsDoneWhatHasNotComeOff) {
    JournalFile journal(changes_, clock_);
    journal.Note(Rename());
    {
        const FullDisk full(10);
        EXPECT_THROW(journal.Note(FileChangeFailed{1, "full"}), Failure);
    }
    journal.Remark(RunEnded{.outcome = "failed", .status = 1});
    EXPECT_EQ(Read(journal.Stamp()), std::vector<ChangeRecord>{Rename()});
}

TEST_F(JournalDiskTest, LeavesNoEmptyFileWhereItCannotEvenStart) {
    const FullDisk full(10);
    {
        JournalFile journal(changes_, clock_);
        EXPECT_THROW(journal.Note(Rename()), Failure);
    }
    EXPECT_TRUE(fs::is_empty(changes_));
}

}  // namespace
}  // namespace quillon
