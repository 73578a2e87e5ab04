#include "bench/report.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace quillon::bench {
namespace {

const std::string Begin = "<!-- measured: begin; quillon_bench writes what follows -->\n";
const std::string End = "<!-- measured: end -->\n";

TEST(WithMeasured, ReplacesOnlyWhatStandsBetweenTheMarks) {
    EXPECT_EQ(WithMeasured("before\n" + Begin + "old\n" + End + "after\n", "new\n"),
              "before\n" + Begin + "\nnew\n\n" + End + "after\n");
}

TEST(WithMeasured, DoesTheSameASecondTime) {
    const std::string once = WithMeasured("before\n" + Begin + End + "after\n", "new\n");
    EXPECT_EQ(WithMeasured(once, "new\n"), once);
}

TEST(WithMeasured, RefusesAPageWhoseMarksAreNotClear) {
    for (const std::string& page :
         {std::string("text\n"), Begin, End, End + Begin, Begin + Begin + End, Begin + End + End})
        EXPECT_THROW(WithMeasured(page, "new\n"), std::runtime_error) << page;
}

}  // namespace
}  // namespace quillon::bench
