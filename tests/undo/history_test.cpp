#include "undo/history.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using Kind = FileChange::Kind;

PastRun Ran(const std::string& stamp, std::size_t changes = 1) {
    return {.started = {.stamp = stamp, .version = "1", .mode = "Reconcile"},
            .ended = RunEnded{.outcome = "completed"},
            .changes = changes};
}

PastRun Undid(const std::string& stamp, const std::string& undoes, int status = 0) {
    return {.started = {.stamp = stamp, .version = "1", .mode = "undo", .undoes = undoes},
            .ended = RunEnded{.outcome = "completed", .status = status},
            .changes = 1};
}

PastRun CutOff(PastRun run) {
    run.ended.reset();
    return run;
}

FileChange Taking(std::uint64_t number, const std::string& back) {
    return {.number = number, .kind = Kind::Moved, .path = "b", .target = "a", .takesBack = back};
}

TEST(CompareStamps, KnowsRunsOfOneSecond) {
    EXPECT_LT(CompareStamps("2026-11-21_07-13-05", "2026-11-21_07-13-06"), 0);
    EXPECT_LT(CompareStamps("2026-11-21_07-13-05", "2026-11-21_07-13-05-2"), 0);
    EXPECT_LT(CompareStamps("2026-11-21_07-13-05-9", "2026-11-21_07-13-05-10"), 0);
    EXPECT_GT(CompareStamps("2026-11-21_07-13-06", "2026-11-21_07-13-05-2"), 0);
    EXPECT_EQ(CompareStamps("2026-11-21_07-13-05-2", "2026-11-21_07-13-05-2"), 0);
}

TEST(LastToUndo, IsTheLastRunThatChangedSomething) {
    EXPECT_EQ(History({}).LastToUndo(), "");
    EXPECT_EQ(History({Ran("1"), Ran("2"), Ran("3", 0)}).LastToUndo(), "2");
}

TEST(LastToUndo, GoesFurtherBackWithEachUndo) {
    EXPECT_EQ(History({Ran("1"), Ran("2"), Undid("3", "2")}).LastToUndo(), "1");
    EXPECT_EQ(History({Ran("1"), Ran("2"), Undid("3", "2"), Undid("4", "1")}).LastToUndo(), "");
    EXPECT_EQ(History({Ran("1"), Ran("2"), Undid("3", "1")}).LastToUndo(), "");
    EXPECT_EQ(History({Ran("1"), Undid("2", "1"), Ran("3")}).LastToUndo(), "3");
}

TEST(LastToUndo, IsARunWhoseUndoWasTakenBack) {
    EXPECT_EQ(History({Ran("1"), Undid("2", "1"), Undid("3", "2")}).LastToUndo(), "1");
    EXPECT_EQ(History({Ran("1"), Undid("2", "1"), Undid("3", "2"), Undid("4", "1")}).LastToUndo(),
              "");
}

TEST(LastToUndo, StaysWithARunOfWhichSomethingWasLeft) {
    EXPECT_EQ(History({Ran("1"), Ran("2"), Undid("3", "2", 1)}).LastToUndo(), "2");
    EXPECT_EQ(History({Ran("1"), Ran("2"), Undid("3", "2"), Undid("4", "3", 1)}).LastToUndo(), "3");
    EXPECT_EQ(History({Ran("1"), Ran("2"), Undid("3", "2", 1), Undid("4", "1")}).LastToUndo(), "");
}

TEST(LastToUndo, TakesAnUndoUpThatWasCutOff) {
    EXPECT_EQ(History({Ran("1"), Ran("2"), CutOff(Undid("3", "1"))}).LastToUndo(), "1");
    EXPECT_EQ(History({Ran("1"), Undid("2", "1"), CutOff(Undid("3", "2"))}).LastToUndo(), "2");
}

TEST(LastToUndo, GoesFurtherBackOnceAnUndoThatWasCutOffIsDone) {
    EXPECT_EQ(History({Ran("1"), Ran("2"), CutOff(Undid("3", "2")), Undid("4", "2")}).LastToUndo(),
              "1");
    // Taken back, half of it as well as all of it.
    EXPECT_EQ(History({Ran("1"), CutOff(Undid("2", "1")), Undid("3", "2")}).LastToUndo(), "1");
    EXPECT_EQ(
        History({Ran("1"), Ran("2"), Undid("3", "2"), CutOff(Undid("4", "3")), Undid("5", "4")})
            .LastToUndo(),
        "1");
}

TEST(History, KnowsAnUndoThatWasCutOffAsOneWithItsNextParts) {
    const History history(
        {Ran("1"), CutOff(Undid("2", "1")), Ran("3", 0), CutOff(Undid("4", "1")), Undid("5", "1")});
    EXPECT_EQ(history.FirstPartOf("5"), "2");
    EXPECT_EQ(history.FirstPartOf("4"), "2");
    EXPECT_EQ(history.FirstPartOf("2"), "2");
    EXPECT_EQ(history.FirstPartOf("1"), "1");
    EXPECT_EQ(history.FirstPartOf("6"), "6");
    EXPECT_EQ(history.PartBefore("1"), "");
    EXPECT_EQ(History({Ran("1"), CutOff(Undid("2", "1"))}).PartBefore("1"), "2");
    EXPECT_EQ(History({Ran("1"), Undid("2", "1", 1), Undid("3", "1")}).FirstPartOf("3"), "2");
}

TEST(History, TakesNoUndosForOneBetweenWhichSomethingElseWasDone) {
    EXPECT_EQ(
        History({Ran("1"), CutOff(Undid("2", "1")), Ran("3"), Undid("4", "1")}).FirstPartOf("4"),
        "4");
    EXPECT_EQ(
        History({Ran("1"), Ran("2"), CutOff(Undid("3", "2")), Undid("4", "1")}).FirstPartOf("4"),
        "4");
    EXPECT_EQ(History({Ran("1"), Undid("2", "1"), Undid("3", "1")}).FirstPartOf("3"), "3");
    EXPECT_EQ(History({Ran("1"), CutOff(Undid("2", "1")), Undid("3", "2")}).PartBefore("1"), "");
}

TEST(History, KnowsNoPartOfAnUndoAsOneThatTakesTheOtherBack) {
    const History history({Ran("1"), Undid("2", "1"), CutOff(Undid("3", "2")), Undid("4", "2")});
    EXPECT_EQ(history.UndoneBy(2), "");
    EXPECT_EQ(history.UndoneBy(1), "4");
    EXPECT_EQ(history.UndoneBy(0), "");
    EXPECT_EQ(history.FirstPartOf("4"), "3");
}

TEST(History, TellsWhichUndoHasTakenARunBack) {
    const History history({Ran("1"), Ran("2"), Undid("3", "2")});
    EXPECT_EQ(history.UndoneBy(0), "");
    EXPECT_EQ(history.UndoneBy(1), "3");
}

TEST(History, LeavesUndosOutOfAWayBack) {
    const History history({Ran("1"), Ran("2"), Undid("3", "2"), Ran("4")});
    EXPECT_THAT(history.ForFiles("1"), ElementsAre(3, 1, 0));
    EXPECT_THAT(history.ForRows("1"), ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(history.UndosSince("1"), ElementsAre(2));
    EXPECT_THAT(history.ForFiles("3"), ElementsAre(3, 2));
    EXPECT_THAT(history.ForRows("4"), ElementsAre(3));
    EXPECT_THAT(history.ForFiles("5"), IsEmpty());
}

TEST(History, TakesUndosBackTogether) {
    const History history({Ran("1"), Ran("2"), Undid("3", "2"), Undid("4", "1")});
    EXPECT_THAT(history.ForFiles("3"), ElementsAre(3, 2));
    EXPECT_THAT(history.ForRows("3"), ElementsAre(2, 3));
    const History after({Ran("1"), Ran("2"), Undid("3", "2"), Undid("4", "1"), Undid("5", "3")});
    EXPECT_EQ(after.UndoneBy(0), "");
    EXPECT_EQ(after.UndoneBy(1), "");
    EXPECT_EQ(after.UndoneBy(3), "5");
    EXPECT_EQ(after.LastToUndo(), "2");
    EXPECT_THAT(after.ForFiles("3"), ElementsAre(3, 2));
    EXPECT_THAT(after.ForRows("1"), ElementsAre(0, 1, 2, 3, 4));
}

/// Two runs, taken back one after the other.
std::vector<PastRun> AllTakenBack() {
    return {Ran("1"), Ran("2"), Undid("3", "2"), Undid("4", "1")};
}

std::vector<PastRun> With(std::vector<PastRun> runs, const std::vector<PastRun>& more) {
    runs.insert(runs.end(), more.begin(), more.end());
    return runs;
}

TEST(RowsOfAWayBack, AreWithoutUndosThatWentFurtherBack) {
    EXPECT_THAT(History(AllTakenBack()).ForRows("2"), ElementsAre(1, 2));
}

TEST(RowsOfAWayBack, AreWithUndosThatWentFurtherBackAndWereTakenBack) {
    EXPECT_THAT(History(With(AllTakenBack(), {Undid("5", "3")})).ForRows("2"),
                ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(History({Ran("1"), Ran("2"), Undid("3", "1"), Undid("4", "3", 1)}).ForRows("2"),
                ElementsAre(1, 2, 3));
    // And that was taken back once more.
    EXPECT_THAT(History({Ran("1"), Ran("2"), Undid("3", "1"), Undid("4", "3"), Undid("5", "4")})
                    .ForRows("2"),
                ElementsAre(1, 3, 4));
}

TEST(RowsOfAWayBack, CountAnUndoThatWasCutOffAsFarAsItHasSavedThem) {
    PastRun last = CutOff(Undid("5", "3"));
    EXPECT_THAT(History(With(AllTakenBack(), {last})).ForRows("2"), ElementsAre(1, 2, 4));
    last.hasSavedRows = true;
    EXPECT_THAT(History(With(AllTakenBack(), {last})).ForRows("2"), ElementsAre(1, 2, 3, 4));
}

TEST(TakenBack, IsWhatNoLaterUndoHasTakenBackItself) {
    const RecordedRun undo{.stamp = "2", .records = {Taking(1, "1#7"), Taking(2, "1#6")}};
    const RecordedRun again{.stamp = "3", .records = {Taking(1, "2#2")}};
    EXPECT_THAT(TakenBack({{undo}}).certain, UnorderedElementsAre("1#7", "1#6"));
    EXPECT_THAT(TakenBack({{again, undo}}).certain, UnorderedElementsAre("1#7", "2#2"));
}

TEST(TakenBack, IsNotWhatFailedOrMayHave) {
    const RecordedRun failed{
        .stamp = "2", .records = {Taking(1, "1#7"), FileChangeFailed{1, "full"}, Taking(2, "1#6")}};
    EXPECT_THAT(TakenBack({{failed}}).certain, UnorderedElementsAre("1#6"));
    const RecordedRun killed{.stamp = "2",
                             .records = {Taking(1, "1#7"), Taking(2, "1#6"), Taking(3, "1#6")},
                             .isWhole = false};
    EXPECT_THAT(TakenBack({{killed}}).certain, IsEmpty());
    EXPECT_THAT(TakenBack({{killed}}).told, UnorderedElementsAre("1#7"));
}

TEST(TakenBack, IsSettledWhereALaterUndoHasGoneOn) {
    const RecordedRun killed{
        .stamp = "2", .records = {Taking(1, "1#7"), Taking(2, "1#6")}, .isWhole = false};
    const RecordedRun again{.stamp = "3", .records = {Taking(1, "1#5")}, .isWhole = false};
    EXPECT_THAT(TakenBack({{again, killed}}).told, UnorderedElementsAre("1#7", "1#6"));
}

TEST(TakenBack, IsNotWhatWasRecordedTogetherAndMayNotHaveBegun) {
    std::vector<ChangeRecord> records{Taking(1, "1#9")};
    for (const std::uint64_t number : {2U, 3U}) {
        FileChange together = Taking(number, "1#" + std::to_string(9 - number));
        together.group = 2;
        records.emplace_back(together);
    }
    const RecordedRun killed{.stamp = "2", .records = records, .isWhole = false};
    EXPECT_THAT(TakenBack({{killed}}).told, UnorderedElementsAre("1#9"));
    const RecordedRun again{.stamp = "3", .records = {Taking(1, "1#6")}, .isWhole = false};
    EXPECT_THAT(TakenBack({{again, killed}}).told, UnorderedElementsAre("1#9", "1#7"));
}

TEST(TakenBack, IsSettledWhereALaterUndoHasGoneOnWithAnOlderRun) {
    const RecordedRun killed{.stamp = "3", .records = {Taking(1, "2#1")}, .isWhole = false};
    const RecordedRun again{
        .stamp = "4", .records = {Taking(1, "1#5"), Taking(2, "1#4")}, .isWhole = false};
    EXPECT_THAT(TakenBack({{again, killed}}).told, UnorderedElementsAre("2#1", "1#5"));
}

TEST(TakenBack, IsNotWhatMayHaveBeenRestored) {
    const RecordedRun undo{.stamp = "2", .records = {Taking(1, "1#7"), Taking(2, "1#6")}};
    const RecordedRun killed{.stamp = "3", .records = {Taking(1, "2#2")}, .isWhole = false};
    EXPECT_THAT(TakenBack({{killed, undo}}).certain, UnorderedElementsAre("1#7"));
}

}  // namespace
}  // namespace quillon
