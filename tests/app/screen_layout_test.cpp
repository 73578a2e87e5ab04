#include "app/views/screen_layout.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "app/display_text.h"
#include "driver/phase_captions.h"

namespace quillon {
namespace {

constexpr ScreenSize Usual{.columns = 80, .rows = 24};

FormState Reconciling(std::size_t selected) {
    FormState state;
    for (std::size_t i = 0; i < PhaseCount; ++i)
        state.aPhase[i] = {PhaseCaptions[i], true, false};
    state.aPhase[selected].selected = true;
    state.lblver = "Version 1.2.3";
    state.aItem = "12. Reconcile Folder Tracks with Database for Artist Sängerin";
    state.aError = "ProcessTracks";
    return state;
}

std::string Joined(const std::vector<ScreenLine>& lines) {
    std::string text;
    for (const ScreenLine& line : lines)
        text += line.text + '\n';
    return text;
}

TEST(LayOutScreen, ShowsAllPhasesAndEverythingElseOn24Lines) {
    const auto lines = LayOutScreen(Reconciling(3), std::chrono::seconds(75), false, Usual);
    EXPECT_EQ(lines.size(), 24U);
    const std::string text = Joined(lines);
    for (const std::string_view caption : PhaseCaptions)
        EXPECT_NE(text.find(caption), std::string::npos) << caption;
    EXPECT_NE(text.find("Library Consistency Management"), std::string::npos);
    EXPECT_NE(text.find("Version 1.2.3"), std::string::npos);
    EXPECT_NE(text.find("Reconcille Library vs Database"), std::string::npos);
    EXPECT_NE(text.find("0:01:15"), std::string::npos);
    EXPECT_NE(text.find("Current  12. Reconcile Folder"), std::string::npos);
    EXPECT_NE(text.find("Errors   ProcessTracks"), std::string::npos);
    EXPECT_NE(text.find("Abort"), std::string::npos);
}

TEST(LayOutScreen, MarksTheSelectedPhaseAndNoOther) {
    const auto lines = LayOutScreen(Reconciling(3), {}, false, Usual);
    const auto marked = std::ranges::count_if(lines, &ScreenLine::emphasized);
    EXPECT_EQ(marked, 1);
    const auto line = std::ranges::find_if(lines, &ScreenLine::emphasized);
    EXPECT_EQ(line->text, " (*) 4. Add Folder Tracks to Library");
}

TEST(LayOutScreen, LeavesHiddenPhasesOut) {
    FormState state = Reconciling(7);
    for (std::size_t i = 0; i < PhaseCount; ++i)
        state.aPhase[i].visible = i == 0 || i == 7 || i == 8;
    const std::string text = Joined(LayOutScreen(state, {}, false, Usual));
    EXPECT_NE(text.find("8. Updatae Playlist References"), std::string::npos);
    EXPECT_EQ(text.find("2. Remove Duplicates"), std::string::npos);
}

TEST(LayOutScreen, HidesTheReconcileLabelOutsideThatMode) {
    FormState state = Reconciling(10);
    state.aLblReconcile = false;
    EXPECT_EQ(Joined(LayOutScreen(state, {}, false, Usual)).find("Reconcille"), std::string::npos);
}

TEST(LayOutScreen, SaysThatAnAbortIsUnderWay) {
    EXPECT_NE(Joined(LayOutScreen(Reconciling(3), {}, true, Usual)).find("Aborting"),
              std::string::npos);
}

TEST(LayOutScreen, FitsEveryScreen) {
    for (std::size_t selected = 0; selected < PhaseCount; ++selected) {
        const FormState state = Reconciling(selected);
        for (std::size_t rows = 0; rows <= 30; ++rows) {
            for (const std::size_t columns : {0U, 1U, 7U, 40U, 80U, 200U}) {
                const auto lines = LayOutScreen(state, {}, false, {columns, rows});
                EXPECT_LE(lines.size(), rows);
                for (const ScreenLine& line : lines)
                    EXPECT_LE(DisplayColumns(line.text), columns);
            }
        }
    }
}

TEST(LayOutScreen, KeepsTheSelectedPhaseOnALowScreen) {
    for (std::size_t selected = 0; selected < PhaseCount; ++selected) {
        for (std::size_t rows = 4; rows < 24; ++rows) {
            const auto lines = LayOutScreen(Reconciling(selected), {}, false, {40, rows});
            EXPECT_TRUE(std::ranges::any_of(lines, &ScreenLine::emphasized))
                << "phase " << selected << " on " << rows << " lines";
        }
    }
}

TEST(LayOutScreen, KeepsTheItemAndTheErrorOnTheLowestScreens) {
    const std::string text = Joined(LayOutScreen(Reconciling(3), {}, false, {80, 2}));
    EXPECT_NE(text.find("Current"), std::string::npos);
    EXPECT_NE(text.find("Errors"), std::string::npos);
}

TEST(LayOutScreen, CutsLongTextsOn40Columns) {
    const std::string text = Joined(LayOutScreen(Reconciling(3), {}, false, {40, 24}));
    EXPECT_NE(text.find("Current  12. Reconcile Folder Tracks wi…\n"), std::string::npos);
}

TEST(LayOutScreen, LetsNoControlCharacterOfANameThrough) {
    FormState state = Reconciling(3);
    state.aItem = "a\x1B[2Jb\nc";
    const std::string text = Joined(LayOutScreen(state, {}, false, Usual));
    EXPECT_EQ(text.find('\x1B'), std::string::npos);
    EXPECT_NE(text.find("Current  a [2Jb c\n"), std::string::npos);
}

}  // namespace
}  // namespace quillon
