#include <QProgressBar>
#include <limits>

#include "tests/app/window/window_fixture.h"

namespace quillon {
namespace {

class Progress : public WindowFixture {
  protected:
    Progress() { Show(InMode(16)); }

    const QProgressBar& BarAt(std::size_t done, std::size_t total) {
        FormState state = InMode(16);
        state.progress = {.done = done, .total = total};
        Draw(state);
        return Control<QProgressBar>("progress");
    }
};

TEST_F(Progress, OnlySaysThatWorkGoesOnWhereTheTotalIsNotKnown) {
    const QProgressBar& bar = BarAt(0, 0);
    EXPECT_EQ(bar.minimum(), bar.maximum());
    EXPECT_FALSE(bar.isTextVisible());
}

TEST_F(Progress, IsAsFarAsTheFormSays) {
    const QProgressBar& bar = BarAt(25, 200);
    EXPECT_EQ(bar.value() * 8, bar.maximum());
    EXPECT_EQ(bar.text(), "12 %");
    EXPECT_TRUE(bar.isTextVisible());
    EXPECT_EQ(BarAt(200, 200).text(), "100 %");
}

TEST_F(Progress, StartsAnewWithAPhase) {
    BarAt(200, 200);
    EXPECT_EQ(BarAt(0, 50).text(), "0 %");
    const QProgressBar& bar = BarAt(0, 0);
    EXPECT_EQ(bar.maximum(), 0);
    EXPECT_FALSE(bar.isTextVisible());
}

TEST_F(Progress, StandsForTheWholePhase) {
    FormState state = InMode(16);
    state.progress = {.done = 1, .total = 2, .from = 0.5, .to = 1};
    Draw(state);
    EXPECT_EQ(Control<QProgressBar>("progress").text(), "75 %");
    state.progress = {.done = 0, .total = 0, .from = 0.5, .to = 1};
    Draw(state);
    EXPECT_EQ(Control<QProgressBar>("progress").text(), "50 %");
}

TEST_F(Progress, StandsMoreThanABarCanCount) {
    const QProgressBar& bar =
        BarAt(std::numeric_limits<std::size_t>::max() / 2, std::numeric_limits<std::size_t>::max());
    EXPECT_GT(bar.maximum(), 0);
}

}  // namespace
}  // namespace quillon
