#include "app/journal/journal_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "app/journal/journal_lines.h"
#include "platform/failure.h"
#include "tests/outside/temporary_folder.h"

namespace quillon {
namespace {

using testing::ElementsAre;

class JournalReaderTest : public testing::Test {
  protected:
    std::filesystem::path Make(const std::string& text,
                               const std::string& stamp = "2026-11-21_07-13-05") {
        return folder_.MakeFile(stamp + ".jsonl", text);
    }
    static std::string Line(const ChangeRecord& record) { return ToLine(record) + '\n'; }

    outside::TemporaryFolder folder_;
    const RunStarted start_{.stamp = "2026-11-21_07-13-05", .version = "1", .mode = ""};
    const RowChange row_{
        .table = "Tracks", .key = {{"ID", std::int64_t{5}}}, .fields = {{"Title", "a", "b"}}};
};

TEST_F(JournalReaderTest, ReadsAWholeJournal) {
    const JournalContent journal =
        ReadJournal(Make(Line(start_) + Line(row_) + Line(RunEnded{.outcome = "completed"})));
    EXPECT_EQ(journal.stamp, "2026-11-21_07-13-05");
    EXPECT_TRUE(journal.isWhole);
    EXPECT_THAT(journal.damaged, testing::IsEmpty());
    ASSERT_EQ(journal.records.size(), 3U);
    EXPECT_EQ(std::get<RowChange>(journal.records[1]), row_);
}

TEST_F(JournalReaderTest, TellsWhatAKillHasCutShort) {
    const JournalContent journal = ReadJournal(Make(Line(start_) + Line(row_) + "{\"record\":\"f"));
    EXPECT_FALSE(journal.isWhole);
    EXPECT_EQ(journal.records.size(), 2U);
    ASSERT_EQ(journal.damaged.size(), 1U);
    EXPECT_EQ(journal.damaged.front().line, 3U);
    EXPECT_TRUE(journal.damaged.front().isCutShort);
}

TEST_F(JournalReaderTest, ReadsAroundLinesThatWereEdited) {
    const JournalContent journal = ReadJournal(Make(Line(start_) + "nonsense\n\n" + Line(row_)));
    EXPECT_EQ(journal.records.size(), 2U);
    ASSERT_EQ(journal.damaged.size(), 2U);
    EXPECT_EQ(journal.damaged[0].line, 2U);
    EXPECT_EQ(journal.damaged[1].line, 3U);
    EXPECT_FALSE(journal.damaged[0].isCutShort);
}

TEST_F(JournalReaderTest, SaysWhatCannotBeRead) {
    EXPECT_THROW(ReadJournal(folder_ / "missing.jsonl"), Failure);
    EXPECT_THROW(ReadJournal(folder_.MakeFolder("folder.jsonl")), Failure);
}

TEST_F(JournalReaderTest, FindsJournalsTheOldestFirst) {
    for (const char* const stamp : {"2026-11-21_07-13-05-10", "2026-11-21_07-13-05-9",
                                    "2026-11-21_07-13-05", "2025-11-21_07-13-05"})
        Make("", stamp);
    folder_.MakeFile("other.txt");
    std::vector<std::string> names;
    for (const std::filesystem::path& journal : JournalsIn(folder_.Path()))
        names.push_back(journal.stem().string());
    EXPECT_THAT(names, ElementsAre("2025-11-21_07-13-05", "2026-11-21_07-13-05",
                                   "2026-11-21_07-13-05-9", "2026-11-21_07-13-05-10"));
    EXPECT_THAT(JournalsIn(folder_ / "missing"), testing::IsEmpty());
}

TEST_F(JournalReaderTest, KnowsWhatARunWas) {
    const FileChange backup{.kind = FileChange::Kind::Copied,
                            .path = R"(D:\jukebox.mdb)",
                            .target = R"(D:\jukebox.mdb_Copy Dated_11212026_71305_AM_)"};
    const RunEnded end{.outcome = "completed", .status = 1};
    const PastRun run = LookAtJournal(Make(Line(start_) + Line(ModeChosen{"Reconcile"}) +
                                           Line(backup) + Line(row_) + "nonsense\n" + Line(end)));
    EXPECT_EQ(run.started.stamp, "2026-11-21_07-13-05");
    EXPECT_EQ(run.started.mode, "Reconcile");
    EXPECT_EQ(run.ended, end);
    EXPECT_EQ(run.changes, 1U) << "copies that a run makes first are no change of the library";
    EXPECT_FALSE(run.IsUndo());
}

TEST_F(JournalReaderTest, ReadsNoMoreThanBeginningAndEndWhereTheEndHasCounted) {
    const RunEnded end{.outcome = "completed", .changes = 5};
    // Two rows are there: that five are told shows that nobody has counted them.
    const PastRun run = LookAtJournal(
        Make(Line(start_) + Line(ModeChosen{"Reconcile"}) + Line(row_) + Line(row_) + Line(end)));
    EXPECT_EQ(run.started.mode, "Reconcile");
    EXPECT_EQ(run.ended, end);
    EXPECT_EQ(run.changes, 5U);
    const PastRun cutOff = LookAtJournal(
        Make(Line(start_) + Line(row_) + Line(row_) + Line(end) + R"({"record":"log)"));
    EXPECT_EQ(cutOff.changes, 2U);
}

TEST_F(JournalReaderTest, KnowsAnUndoThatWasCutOff) {
    RunStarted start = start_;
    start.mode = "undo";
    start.undoes = "2026-11-20_07-13-05";
    const PastRun run = LookAtJournal(Make(Line(start) + Line(row_)));
    EXPECT_TRUE(run.IsUndo());
    EXPECT_EQ(run.started.undoes, "2026-11-20_07-13-05");
    EXPECT_FALSE(run.ended);
}

}  // namespace
}  // namespace quillon
