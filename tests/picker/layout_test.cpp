#include "picker/layout.h"

#include <gtest/gtest.h>
#include <utility>

#include "platform/failure.h"
#include "run/settings.h"

namespace quillon {
namespace {

Settings Size(std::int16_t wide, std::int16_t high) {
    Settings settings;
    settings.ImagesWide = wide;
    settings.ImagesHigh = high;
    return settings;
}

std::string FailureOf(const Settings& settings) {
    try {
        const PickerLayout layout(settings);
        return "none, " + std::to_string(layout.PerPage());
    } catch (const Failure& failure) {
        return failure.what();
    }
}

TEST(PickerLayout, CountsPages) {
    const PickerLayout layout(Size(5, 3));
    EXPECT_EQ(layout.Wide(), 5U);
    EXPECT_EQ(layout.PerPage(), 15U);
    EXPECT_EQ(layout.Pages(0), 0U);
    EXPECT_EQ(layout.Pages(1), 1U);
    EXPECT_EQ(layout.Pages(15), 1U);
    EXPECT_EQ(layout.Pages(16), 2U);
    EXPECT_EQ(layout.PageOf(0), 1U);
    EXPECT_EQ(layout.PageOf(14), 1U);
    EXPECT_EQ(layout.PageOf(15), 2U);
}

TEST(PickerLayout, CountsAlbumsOfAPageWithSixteenBits) {
    EXPECT_EQ(FailureOf(Size(32767, 1)), "none, 32767");
    EXPECT_EQ(FailureOf(Size(256, 128)), "Overflow: 32768");
    EXPECT_EQ(FailureOf(Size(32767, 32767)), "Overflow: 1073676289");
}

TEST(PickerLayout, NeedsASizeThatHoldsSomething) {
    EXPECT_EQ(FailureOf(Size(0, 3)), "Invalid procedure call or argument: ImagesWide=0");
    EXPECT_EQ(FailureOf(Size(5, 0)), "Invalid procedure call or argument: ImagesHigh=0");
    EXPECT_EQ(FailureOf(Size(-2, -3)), "Invalid procedure call or argument: ImagesWide=-2");
}

}  // namespace
}  // namespace quillon
