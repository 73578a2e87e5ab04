#include "undo/file_steps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillon {
namespace {

FileChange Moved(std::uint64_t number, const char* from, const char* to) {
    return {.number = number, .kind = FileChange::Kind::Moved, .path = from, .target = to};
}

TEST(FileStepsFor, KnowWhichShareANameWithOthers) {
    const RecordedRun run{.stamp = "1",
                          .records = {Moved(1, "D:\\a", "D:\\t"), Moved(2, "D:\\T", "D:\\b"),
                                      Moved(3, "D:\\c", "D:\\d"), Moved(4, "D:\\e", "D:\\E")}};
    std::vector<bool> linked;
    for (const FileStep& step : FileStepsFor(std::span(&run, 1), {}))
        linked.push_back(step.isLinked);
    EXPECT_THAT(linked, testing::ElementsAre(false, false, true, true));
}

TEST(FileStepsFor, LeaveOutWhatIsDoneForCertainAndWhatALookDoesNotTell) {
    const RecordedRun run{.stamp = "1",
                          .records = {Moved(1, "D:\\a", "D:\\t"), Moved(2, "D:\\t", "D:\\b"),
                                      Moved(3, "D:\\c", "D:\\d"), Moved(4, "D:\\e", "D:\\f")}};
    std::vector<std::string> names;
    for (const FileStep& step :
         FileStepsFor(std::span(&run, 1), {.certain = {"1#4"}, .told = {"1#3", "1#2"}}))
        names.push_back(step.name);
    EXPECT_THAT(names, testing::ElementsAre("1#3", "1#1"));
}

}  // namespace
}  // namespace quillon
