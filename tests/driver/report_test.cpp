#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/driver/form_fixture.h"

namespace quillon {
namespace {

/// What a run tells of rows when the database takes what a mode has done, and when it does not.
class ReportTest : public FormFixture {
  protected:
    ReportTest() {
        SwitchOn({"AddFiles"});
        Note(&Procedures::AddFilesToLibrary, "AddFilesToLibrary", [this](Run& context) {
            context.counts.tracksAdded = 3;
            context.counts.filesCopied = 3;
            if (isFull) world.calls.Refuse("Flush", FailureNumber::DiskFull, R"(D:\Data\cdj.mdb)");
            if (isAborted) context.AbortRequested = true;
        });
    }

    bool isFull = false, isAborted = false;
};

TEST_F(ReportTest, CountsRowsThatAreDurable) {
    EXPECT_EQ(Load(), RunOutcome::Completed);
    EXPECT_EQ(run.Report().counts.tracksAdded, 3U);
    EXPECT_TRUE(run.Report().saved);
}

TEST_F(ReportTest, CountsThemAfterAnAbortToo) {
    isAborted = true;
    EXPECT_EQ(Load(), RunOutcome::Aborted);
    EXPECT_EQ(run.Report().counts.tracksAdded, 3U);
    EXPECT_EQ(run.Report().counts.filesCopied, 3U);
}

TEST_F(ReportTest, DoesNotCountRowsThatTheDatabaseCouldNotTake) {
    isFull = true;
    EXPECT_EQ(Load(), RunOutcome::Completed);
    EXPECT_GT(run.counts.errors, 0U);
    EXPECT_EQ(run.Report().counts.tracksAdded, 0U);
    EXPECT_EQ(run.Report().counts.filesCopied, 3U) << "the files are there";
    EXPECT_FALSE(run.Report().saved);
}

}  // namespace
}  // namespace quillon
