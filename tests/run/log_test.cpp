#include "run/log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <new>
#include <stdexcept>

#include "run/steps.h"
#include "tests/support/fakes.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Log : public ::testing::Test {
  protected:
    using Run = quillon::Run;  // not the one of ::testing::Test

    fakes::FakeWorld world;
    Run& run = world.run;
};

TEST_F(Log, TellsLocationStepAndDescriptionOfAPendingError) {
    const PendingError pending{0, "Object required"};
    LogError(run, LogSource, "Update Database Error:", &pending);
    EXPECT_THAT(world.host.log,
                ElementsAre("Quillon: Update Database Error: Line 0 Object required"));
}

TEST_F(Log, TellsTheLocationAloneWithoutAPendingError) {
    LogError(run, LogSource, "GetDrive");
    EXPECT_THAT(world.host.log, ElementsAre("Quillon: GetDrive"));
}

TEST_F(Log, ShowsOnlyTheLocationInTheWindowAndLetsEventsRun) {
    const PendingError pending{3, "Disk full"};
    LogError(run, LogSource, "TimeStampBackup", &pending);
    EXPECT_EQ(run.form.aError, "TimeStampBackup");
    EXPECT_EQ(world.window.events, 1);
    EXPECT_EQ(world.window.last.aError, "TimeStampBackup");
}

TEST_F(Log, NoticesTheAbortButtonDuringAnError) {
    world.window.abortPressed = true;
    LogError(run, LogSource, "anything");
    EXPECT_TRUE(run.AbortRequested);
}

TEST_F(Log, CountsErrorsButNotOtherRecords) {
    WriteLog(run, LogSource, "a remark");
    LogError(run, LogSource, "an error");
    EXPECT_EQ(run.counts.errors, 1U);
}

TEST_F(Log, TellsTheWindowWhichRecordsAreErrors) {
    WriteLog(run, LogSource, "a remark");
    LogError(run, LogSource, "an error");
    EXPECT_THAT(world.window.logged,
                ElementsAre(std::pair(LogKind::Information, "Quillon: a remark"),
                            std::pair(LogKind::Error, "Quillon: an error")));
}

TEST_F(Log, TellsTheWindowOnceThatTheHostTakesNothingAndThenEveryRecord) {
    for (const char* const message : {"one", "two", "three"})
        world.calls.Refuse(std::string("WriteLog Quillon: ") + message, FailureNumber::DiskFull,
                           "host.log");
    WriteLog(run, LogSource, "one");
    LogError(run, LogSource, "two");
    LogError(run, LogSource, "three");
    WriteLog(run, LogSource, "taken");
    EXPECT_THAT(world.window.logged,
                ElementsAre(std::pair(LogKind::Error,
                                      "Quillon: The log cannot be written: Disk full: host.log. "
                                      "What is missing from it is only shown here"),
                            std::pair(LogKind::Information, "Quillon: one"),
                            std::pair(LogKind::Error, "Quillon: two"),
                            std::pair(LogKind::Error, "Quillon: three"),
                            std::pair(LogKind::Information, "Quillon: taken")));
    EXPECT_EQ(run.counts.recordsLost, 3U);
    EXPECT_EQ(run.counts.errors, 2U);
    EXPECT_EQ(run.lostRecords.reason, "Disk full: host.log");
    EXPECT_THAT(run.lostRecords.errors, ElementsAre("Quillon: two", "Quillon: three"));
}

TEST_F(Log, KeepsOnlySoManyOfTheErrorsThatTheHostDidNotTake) {
    world.calls.Refuse("WriteLog Quillon: lost", FailureNumber::DiskFull, "host.log");
    for (int i = 0; i < 1000; ++i)
        LogError(run, LogSource, "lost");
    EXPECT_EQ(run.lostRecords.errors.size(), 10U);
    EXPECT_EQ(run.counts.recordsLost, 1000U);
}

TEST_F(Log, DoesNotFailWhenTheHostRefusesTheRecord) {
    world.calls.Refuse("WriteLog Quillon: lost", FailureNumber::DiskFull, "host.log");
    LogError(run, LogSource, "lost");
    EXPECT_EQ(run.form.aError, "lost");
}

enum class TestStep { First = 1, Second = 2, Third = 3, Fourth = 4, Fifth = 5 };

static_assert(NamedStep<TestStep> && !NamedStep<int>, "a bare number is the name of no step");

TEST_F(Log, StepsWithoutNumbersAreLoggedWithZero) {
    Steps steps(run, "Some Procedure");
    EXPECT_FALSE(steps.Try([] { throw Failure(FailureNumber::DiskFull, R"(D:\a)"); }));
    EXPECT_THAT(world.host.log, ElementsAre(R"(Quillon: Some Procedure Line 0 Disk full: D:\a)"));
}

TEST_F(Log, StepsGoOnBehindAFailureAndNameItsStep) {
    Steps steps(run, "Some Procedure");
    bool reached = false;
    EXPECT_FALSE(
        steps.Try(TestStep::Fourth, [] { throw Failure(FailureNumber::DiskFull, R"(D:\a)"); }));
    EXPECT_TRUE(steps.Try(TestStep::Fifth, [&] { reached = true; }));
    EXPECT_TRUE(reached);
    EXPECT_THAT(world.host.log, ElementsAre(R"(Quillon: Some Procedure Line 4 Disk full: D:\a)"));
}

TEST_F(Log, AStepMayHaveALocationOfItsOwn) {
    Steps steps(run, "Some Procedure");
    EXPECT_FALSE(
        steps.TryAs("Some Query:", TestStep::Second, [] { throw std::runtime_error("no table"); }));
    EXPECT_THAT(world.host.log, ElementsAre("Quillon: Some Query: Line 2 no table"));
}

TEST_F(Log, StepsNameWhatTheyConcernUnlessTheDescriptionDoes) {
    Steps steps(run, "Some Procedure");
    steps.Concerning(R"(D:\a)");
    steps.Try(TestStep::First, [] { throw Failure(FailureNumber::DiskFull, R"(D:\a)"); });
    steps.Try(TestStep::Second, [] { throw Failure(FailureNumber::Overflow, "Minutes"); });
    steps.Concerning("");
    steps.Try(TestStep::Third, [] { throw Failure(FailureNumber::Overflow, "Minutes"); });
    EXPECT_THAT(world.host.log,
                ElementsAre(R"(Quillon: Some Procedure Line 1 Disk full: D:\a)",
                            R"(Quillon: Some Procedure Line 2 Overflow: Minutes (D:\a))",
                            "Quillon: Some Procedure Line 3 Overflow: Minutes"));
}

TEST_F(Log, StepsEndWithTheirAdvice) {
    Steps steps(run, "Some Procedure");
    steps.Concerning(R"(D:\a)");
    steps.Advising("make room and run again");
    steps.Try(TestStep::First, [] { throw Failure(FailureNumber::Overflow, "Minutes"); });
    EXPECT_THAT(world.host.log,
                ElementsAre("Quillon: Some Procedure Line 1 Overflow: Minutes (D:\\a); "
                            "make room and run again"));
}

TEST_F(Log, StepsSayInWordsThatThereIsNotEnoughMemory) {
    Steps steps(run, "Some Procedure");
    steps.Try(TestStep::First, [] { throw std::bad_alloc(); });
    steps.Try(TestStep::Second, [] { throw std::length_error("basic_string::append"); });
    EXPECT_THAT(world.host.log, ElementsAre("Quillon: Some Procedure Line 1 Not enough memory",
                                            "Quillon: Some Procedure Line 2 Not enough memory"));
}

TEST_F(Log, StepsThatSucceedLeaveNoRecord) {
    Steps steps(run, "Some Procedure");
    EXPECT_TRUE(steps.Try(TestStep::First, [] {}));
    EXPECT_THAT(world.host.log, IsEmpty());
}

}  // namespace
}  // namespace quillon
