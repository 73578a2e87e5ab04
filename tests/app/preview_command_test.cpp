#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "app/journal/journal_lines.h"
#include "jet/database.h"
#include "tests/app/check_fixture.h"

namespace quillon {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class PreviewCommand : public CheckFixture {
  protected:
    ProgramResult Preview(std::vector<std::string> options = {}) const {
        std::vector<std::string> words{"preview", "--host", Path("shelf")};
        words.insert(words.end(), options.begin(), options.end());
        return CallProgram(words);
    }
    ProgramResult Run() const { return CallProgram({"run", "--quiet", "--host", Path("shelf")}); }
};

TEST_F(PreviewCommand, TellsWhatTheRunThenDoesAndThatNothingIsLeftToDo) {
    const ProgramResult before = Preview();
    EXPECT_EQ(before.status, 1) << before.err;
    EXPECT_THAT(before.out, HasSubstr("A run would now: Reconcile library and database\n"));
    EXPECT_THAT(before.out, HasSubstr("Albums added: 1\n  Alder - First Light\n"));
    EXPECT_THAT(before.out, HasSubstr("Tracks added: 1\n"));
    EXPECT_THAT(before.out, HasSubstr("Nothing has been changed yet"));
    EXPECT_FALSE(std::filesystem::exists(Path("shelf/host.log")));
    EXPECT_EQ(Run().status, 0);
    const ProgramResult after = Preview();
    EXPECT_EQ(after.status, 0) << after.out;
    EXPECT_THAT(after.out, HasSubstr("Nothing would change.\n"));
}

TEST_F(PreviewCommand, PrintsRecordsThatAJournalReaderUnderstands) {
    Write("Music/Alder/Second \xE2\x80\x9Cquoted\xE2\x80\x9D/02 - a'b&c.mp3", "sound");
    std::istringstream lines(Preview({"--json"}).out);
    std::vector<ChangeRecord> records;
    for (std::string line; std::getline(lines, line);)
        records.push_back(FromLine(line));
    ASSERT_GT(records.size(), 3U);
    EXPECT_TRUE(std::holds_alternative<RunStarted>(records.front()));
    ASSERT_TRUE(std::holds_alternative<RunEnded>(records.back()));
    EXPECT_EQ(std::get<RunEnded>(records.back()).outcome, "completed");
}

TEST_F(PreviewCommand, SaysThatTheBrakeWouldHold) {
    SetHostLine("KeepDays=14", "KeepDays=0");
    ASSERT_EQ(Run().status, 0);
    std::filesystem::remove_all(Path("Music/Alder"));
    const ProgramResult held = Preview();
    EXPECT_THAT(held.out, HasSubstr("The brake would stop this run"));
    EXPECT_THAT(held.out, Not(HasSubstr("Tracks removed")));
    const ProgramResult allowed = Preview({"--allow-removals"});
    EXPECT_EQ(allowed.status, 1);
    EXPECT_THAT(allowed.out, HasSubstr("Tracks removed: 1\n"));
    EXPECT_THAT(allowed.out, Not(HasSubstr("The brake would")));
}

TEST_F(PreviewCommand, GoesOnBesideAWriterAndSaysThatARunWouldNot) {
    const jet::Database writer =
        jet::Database::Open(Path("shelf/jukebox.mdb"), jet::OpenMode::ReadWrite);
    const ProgramResult result = Preview();
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out, HasSubstr("! A run would not get the database now: "));
    EXPECT_THAT(result.out, HasSubstr("Albums added: 1\n"));
}

TEST_F(PreviewCommand, EndsWithTwoWhereNothingCanBeFoundOut) {
    Set("Reconcile", "0");
    const ProgramResult nothing = Preview();
    EXPECT_EQ(nothing.status, 2);
    EXPECT_THAT(nothing.out, HasSubstr("could not be found out"));
    Set("Reconcile", "1");
    std::ofstream(Path("shelf/jukebox.mdb")) << "no database";
    const ProgramResult broken = Preview();
    EXPECT_EQ(broken.status, 2);
    EXPECT_THAT(broken.out, HasSubstr("  ! "));
    EXPECT_EQ(CallProgram({"preview", "--host", Path("nowhere")}).status, 2);
}

}  // namespace
}  // namespace quillon
