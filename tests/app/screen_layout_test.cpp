#include "app/views/screen_layout.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "app/text/display_text.h"
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

std::string TextOf(const ScreenLine& line) {
    std::string text;
    for (const ScreenSpan& span : line)
        text += span.text;
    return text;
}

std::string Joined(const std::vector<ScreenLine>& lines) {
    std::string text;
    for (const ScreenLine& line : lines)
        text += TextOf(line) + '\n';
    return text;
}

std::string Screen(const FormState& form, const ScreenRemarks& remarks, ScreenSize size) {
    return Joined(LayOutScreen(form, remarks, size));
}

/// The line that holds this text; fails where there is none.
std::string LineWith(const std::string& screen, const std::string& text) {
    const std::size_t place = screen.find(text);
    EXPECT_NE(place, std::string::npos) << text << " is not on\n" << screen;
    if (place == std::string::npos) return "";
    const std::size_t begin = screen.rfind('\n', place) + 1;
    return screen.substr(begin, screen.find('\n', place) - begin);
}

bool IsRunningPhase(const ScreenLine& line) {
    return !line.empty() && line.front().text.starts_with(" (*) ") &&
           line.front().style == ScreenStyle::Strong;
}

ScreenRemarks WithRecords(std::size_t count) {
    ScreenRemarks remarks;
    for (std::size_t i = 0; i < count; ++i) {
        const bool error = i % 3 == 2;
        remarks.errors += error ? 1 : 0;
        remarks.records.push_back(
            {error ? LogKind::Error : LogKind::Information,
             "record " + std::to_string(i) + " about 音楽 " + std::string(60, 'x')});
    }
    return remarks;
}

TEST(LayOutScreen, ShowsHowFarBackupsAreBeforeAnyPhaseIsShown) {
    FormState state = Reconciling(0);
    for (PhaseIndicator& phase : state.aPhase)
        phase.visible = false;
    EXPECT_EQ(Screen(state, {}, Usual).find("Backups"), std::string::npos);
    state.progress = {.done = 1'000'000, .total = 4'000'000};
    EXPECT_EQ(LineWith(Screen(state, {}, Usual), "Backups"),
              " (*) Backups                                  [######..................]   25 %");
}

TEST(LayOutScreen, ShowsAllPhasesAndEverythingElseOn24Lines) {
    const auto lines = LayOutScreen(Reconciling(3), {.elapsed = std::chrono::seconds(75)}, Usual);
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
    const auto lines = LayOutScreen(Reconciling(3), {}, Usual);
    EXPECT_EQ(std::ranges::count_if(lines, IsRunningPhase), 1);
    const auto line = std::ranges::find_if(lines, IsRunningPhase);
    EXPECT_EQ(TextOf(*line), " (*) 4. Add Folder Tracks to Library");
}

TEST(LayOutScreen, MarksPhasesThatAreDoneWithTheirTime) {
    FormState state = Reconciling(2);
    state.aPhase[0].took = std::chrono::milliseconds(450);
    state.aPhase[1].took = std::chrono::milliseconds(75'000);
    const std::string screen = Screen(state, {}, Usual);
    const std::string first = LineWith(screen, "1. Capture"),
                      second = LineWith(screen, "2. Remove");
    EXPECT_TRUE(first.starts_with(" ok  1. Capture Playlists ")) << first;
    EXPECT_TRUE(first.ends_with(" 0.4 s")) << first;
    EXPECT_TRUE(second.ends_with(" 0:01:15")) << second;
    EXPECT_EQ(LineWith(screen, "4. Add"), " ( ) 4. Add Folder Tracks to Library");
    EXPECT_EQ(LineWith(Screen(state, {}, {30, 24}), "1. Capture"), " ok  1. Capture Playlists");
}

TEST(LayOutScreen, DimsPhasesOfOtherModes) {
    FormState state = Reconciling(2);
    state.aPhase[10].isOtherMode = true;
    const auto lines = LayOutScreen(state, {}, Usual);
    const auto styleOf = [&lines](std::string_view caption) {
        const auto line = std::ranges::find_if(lines, [caption](const ScreenLine& one) {
            return TextOf(one).find(caption) != std::string::npos;
        });
        return line->front().style;
    };
    EXPECT_EQ(styleOf("1. Build Album Picker"), ScreenStyle::Faint);
    EXPECT_EQ(styleOf("1. Pla to M3u"), ScreenStyle::Usual);
}

TEST(LayOutScreen, TellsHowManyPhasesAreCutOff) {
    for (std::size_t selected = 0; selected < PhaseCount; ++selected) {
        const std::string screen = Screen(Reconciling(selected), {}, {50, 15});
        std::size_t told = 0, shown = 0;
        for (const std::string_view caption : PhaseCaptions)
            shown += screen.find(caption) == std::string::npos ? 0U : 1U;
        for (const char* const where : {"above", "below"}) {
            const std::size_t end = screen.find(std::string(" more ") + where);
            if (end == std::string::npos) continue;
            told += std::stoul(screen.substr(screen.rfind(' ', end - 1)));
        }
        EXPECT_EQ(shown + told, PhaseCount) << screen;
        EXPECT_NE(screen.find(PhaseCaptions[selected]), std::string::npos) << screen;
    }
}

TEST(LayOutScreen, LeavesHiddenPhasesOut) {
    FormState state = Reconciling(7);
    for (std::size_t i = 0; i < PhaseCount; ++i)
        state.aPhase[i].visible = i == 0 || i == 7 || i == 8;
    const std::string text = Screen(state, {}, Usual);
    EXPECT_NE(text.find("8. Updatae Playlist References"), std::string::npos);
    EXPECT_EQ(text.find("2. Remove Duplicates"), std::string::npos);
}

TEST(LayOutScreen, HidesTheReconcileLabelOutsideThatMode) {
    FormState state = Reconciling(10);
    state.aLblReconcile = false;
    EXPECT_EQ(Screen(state, {}, Usual).find("Reconcille"), std::string::npos);
}

TEST(LayOutScreen, SaysThatAnAbortIsUnderWay) {
    const std::string text = "Aborting: finishing the current step";
    EXPECT_EQ(Screen(Reconciling(3), {}, Usual).find(text), std::string::npos);
    FormState known = Reconciling(3);
    known.aborting = true;
    for (const std::size_t columns : {40U, 80U, 200U}) {
        EXPECT_NE(Screen(Reconciling(3), {.aborting = true}, {columns, 24}).find(text),
                  std::string::npos);
        EXPECT_NE(Screen(known, {}, {columns, 24}).find(text), std::string::npos);
    }
}

TEST(LayOutScreen, FitsEveryScreen) {
    for (std::size_t selected = 0; selected < PhaseCount; ++selected) {
        FormState state = Reconciling(selected);
        state.progress = {.done = selected, .total = PhaseCount};
        const ScreenRemarks remarks = WithRecords(selected);
        for (std::size_t rows = 0; rows <= 40; ++rows) {
            for (const std::size_t columns : {0U, 1U, 7U, 13U, 20U, 40U, 62U, 80U, 131U, 200U}) {
                const auto lines = LayOutScreen(state, remarks, {columns, rows});
                EXPECT_LE(lines.size(), rows);
                for (const ScreenLine& line : lines)
                    EXPECT_LE(DisplayColumns(TextOf(line)), columns);
            }
        }
    }
}

TEST(LayOutScreen, TellsHowFarTheRunningPhaseHasComeWhereThatIsKnown) {
    FormState state = Reconciling(3);
    EXPECT_EQ(Screen(state, {}, Usual).find('%'), std::string::npos);
    state.progress = {.done = 1, .total = 4};
    EXPECT_EQ(LineWith(Screen(state, {}, Usual), "(*)"),
              " (*) 4. Add Folder Tracks to Library          [######..................]   25 %");
    EXPECT_EQ(LineWith(Screen(state, {}, {40, 24}), "(*)"),
              " (*) 4. Add Folder Tracks to Lib…   25 %");
    state.progress = {.done = 4, .total = 4};
    EXPECT_EQ(LineWith(Screen(state, {}, Usual), "(*)"),
              " (*) 4. Add Folder Tracks to Library          [########################]  100 %");
    state.progress = {.done = 999'999, .total = 1'000'000};
    EXPECT_TRUE(LineWith(Screen(state, {}, Usual), "(*)").ends_with("   99 %"));
}

TEST(LayOutScreen, CountsErrorsBesideTheLatestOne) {
    FormState state = Reconciling(3);
    EXPECT_NE(Screen(state, {.errors = 1}, Usual).find("Errors   ProcessTracks\n"),
              std::string::npos);
    EXPECT_NE(Screen(state, {.errors = 12}, Usual).find("Errors   12, the latest: ProcessTracks\n"),
              std::string::npos);
    state.aError.clear();
    EXPECT_NE(Screen(state, {}, Usual).find("Errors   none\n"), std::string::npos);
}

TEST(LayOutScreen, FillsAHighScreenWithTheLatestRecords) {
    const ScreenRemarks remarks = WithRecords(30);
    const auto lines = LayOutScreen(Reconciling(3), remarks, {80, 40});
    EXPECT_EQ(lines.size(), 40U);
    EXPECT_TRUE(TextOf(lines.back()).starts_with("! record 29"));
    EXPECT_EQ(lines.back().front().style, ScreenStyle::Error);
    EXPECT_TRUE(TextOf(lines[38]).starts_with("  record 28"));
    EXPECT_EQ(lines[38].front().style, ScreenStyle::Usual);
    const std::string text = Joined(lines);
    EXPECT_NE(text.find("\nLog\n"), std::string::npos);
    EXPECT_EQ(text.find("record 5 "), std::string::npos) << "the older ones give way";
}

TEST(LayOutScreen, KeepsItsLinesInPlaceWhileRecordsArrive) {
    const auto before = LayOutScreen(Reconciling(3), {}, {80, 40});
    const auto after = LayOutScreen(Reconciling(3), WithRecords(2), {80, 40});
    ASSERT_GT(after.size(), before.size());
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (TextOf(before[i]).starts_with("Errors")) continue;
        EXPECT_EQ(TextOf(after[i]), TextOf(before[i]));
    }
}

TEST(LayOutScreen, ShowsTheRecordsBesideTheFormOnAWideLowScreen) {
    const auto lines = LayOutScreen(Reconciling(3), WithRecords(40), {200, 24});
    EXPECT_EQ(lines.size(), 24U);
    EXPECT_TRUE(TextOf(lines[0]).ends_with("    Log"));
    for (std::size_t i = 1; i < 19; ++i)
        EXPECT_NE(TextOf(lines[i]).find("record"), std::string::npos) << i;
    EXPECT_EQ(TextOf(lines[1]).find("record"), std::size_t{86}) << "behind the form of 80 columns";
    EXPECT_NE(Joined(lines).find("record 39"), std::string::npos);
}

TEST(LayOutScreen, DoesNotStretchTheFormOverAWideScreen) {
    const auto lines = LayOutScreen(Reconciling(3), {}, {200, 60});
    EXPECT_EQ(DisplayColumns(TextOf(lines[0])), 80U);
}

TEST(LayOutScreen, KeepsTheSelectedPhaseOnALowScreen) {
    for (std::size_t selected = 0; selected < PhaseCount; ++selected) {
        for (std::size_t rows = 4; rows < 24; ++rows) {
            const auto lines = LayOutScreen(Reconciling(selected), {}, {40, rows});
            EXPECT_TRUE(std::ranges::any_of(lines, IsRunningPhase))
                << "phase " << selected << " on " << rows << " lines";
        }
    }
}

TEST(LayOutScreen, KeepsTheItemAndTheErrorOnTheLowestScreens) {
    const std::string text = Screen(Reconciling(3), {}, {80, 2});
    EXPECT_NE(text.find("Current"), std::string::npos);
    EXPECT_NE(text.find("Errors"), std::string::npos);
}

TEST(LayOutScreen, ShortensLongTextsInTheirMiddle) {
    EXPECT_NE(
        Screen(Reconciling(3), {}, {40, 24}).find("Current  12. Reconcile F…Artist Sängerin\n"),
        std::string::npos);
    FormState state = Reconciling(3);
    state.aError = "A location that is much longer than the line it is for";
    EXPECT_NE(Screen(state, {}, {40, 24}).find("Errors   A location that… line it is for\n"),
              std::string::npos);
    EXPECT_NE(Screen(state, {}, {200, 24}).find(state.aError), std::string::npos);
}

TEST(LayOutScreen, LetsNoControlCharacterOfANameThrough) {
    FormState state = Reconciling(3);
    state.aItem = "a\x1B[2Jb\nc";
    const std::string text = Screen(state, {}, Usual);
    EXPECT_EQ(text.find('\x1B'), std::string::npos);
    EXPECT_NE(text.find("Current  a [2Jb c\n"), std::string::npos);
}

}  // namespace
}  // namespace quillon
