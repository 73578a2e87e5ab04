#include "app/win32/win32_window.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "platform/windows/wide_text.h"

namespace quillon {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

/// The window as another program sees it: by the system's own list of controls.
class Win32WindowTest : public testing::Test {
  protected:
    Win32WindowTest() {
        for (std::size_t i = 0; i < PhaseCount; ++i) {
            captions_.at(i) = "Phase " + std::to_string(i + 1) + " & more";
            state_.aPhase.at(i).caption = captions_.at(i);
            state_.aPhase.at(i).visible = i < 10;
        }
        state_.lblver = "Version 1.2.3";
        window_.Show(state_);
    }

    void Process() {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        window_.ProcessEvents(state_);
    }

    static HWND Top() { return FindWindowW(nullptr, WideText(FormCaption).c_str()); }

    static std::string TextOf(HWND control) {
        std::wstring text(4096, L'\0');
        text.resize(static_cast<std::size_t>(
            SendMessageW(control, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
        return NarrowText(text);
    }

    static std::vector<HWND> Controls() {
        std::vector<HWND> found;
        for (HWND one = GetWindow(Top(), GW_CHILD); one != nullptr;
             one = GetWindow(one, GW_HWNDNEXT))
            found.push_back(one);
        return found;
    }
    static HWND ControlOf(const std::string& text) {
        for (HWND const one : Controls())
            if (TextOf(one) == text) return one;
        return nullptr;
    }
    static std::vector<std::string> VisibleTexts() {
        std::vector<std::string> texts;
        for (HWND const one : Controls())
            if (IsWindowVisible(one) != 0) texts.push_back(TextOf(one));
        return texts;
    }
    static bool IsSelected(const std::string& caption) {
        return SendMessageW(ControlOf(caption), BM_GETCHECK, 0, 0) == BST_CHECKED;
    }

    std::array<std::string, PhaseCount> captions_;
    FormState state_;
    Win32Window window_;
};

TEST_F(Win32WindowTest, ShowsWhatTheRunSays) {
    state_.aItem = "D:\\Music\\\u00d6l\\a.mp3";
    state_.aError = "GetDrive";
    state_.progress = {.done = 1, .total = 4};
    state_.aPhase.at(0).took = std::chrono::milliseconds(400);
    Process();
    const std::vector<std::string> texts = VisibleTexts();
    for (const char* const text : {"Reconcille Library vs Database", "D:\\Music\\\u00d6l\\a.mp3",
                                   "GetDrive", "Version 1.2.3", "25 %", "&Abort", "No errors",
                                   "Phase 1 && more", "done in 0.4 s", "Elapsed 0:00:00"})
        EXPECT_THAT(texts, Contains(text));
    EXPECT_THAT(texts, Not(Contains("Phase 11 && more")));
}

TEST_F(Win32WindowTest, OnlyTheRunSelectsPhases) {
    state_.aPhase.at(2).selected = true;
    Process();
    EXPECT_TRUE(IsSelected("Phase 3 && more"));
    HWND const other = ControlOf("Phase 4 && more");
    SendMessageW(other, BM_CLICK, 0, 0);
    SendMessageW(other, BM_SETCHECK, BST_CHECKED, 0);
    SendMessageW(other, WM_KEYDOWN, VK_SPACE, 0);
    SendMessageW(other, WM_KEYUP, VK_SPACE, 0);
    Process();
    EXPECT_FALSE(IsSelected("Phase 4 && more"));
    EXPECT_TRUE(IsSelected("Phase 3 && more"));
}

TEST_F(Win32WindowTest, TheButtonAborts) {
    EXPECT_FALSE(window_.AbortPressed());
    SendMessageW(ControlOf("&Abort"), BM_CLICK, 0, 0);
    Process();
    EXPECT_TRUE(window_.AbortPressed());
    EXPECT_THAT(VisibleTexts(), Contains("Aborting; the run stops after the current step."));
    EXPECT_EQ(IsWindowEnabled(ControlOf("Aborting")), 0);
    window_.Unload();
    EXPECT_TRUE(window_.AbortPressed());
    EXPECT_EQ(Top(), nullptr);
}

TEST_F(Win32WindowTest, ClosingItAbortsAndItStaysUntilTheRunHasStopped) {
    SendMessageW(Top(), WM_CLOSE, 0, 0);
    EXPECT_TRUE(window_.AbortPressed());
    EXPECT_NE(Top(), nullptr);
}

TEST_F(Win32WindowTest, EscapeDoesNotAbort) {
    PostMessageW(Top(), WM_KEYDOWN, VK_ESCAPE, 0);
    Process();
    EXPECT_FALSE(window_.AbortPressed());
}

TEST_F(Win32WindowTest, ListsTheNewestErrorsOnRequest) {
    window_.LogWritten(LogKind::Information, "Quillon", "not an error");
    for (int i = 0; i < 1100; ++i)
        window_.LogWritten(LogKind::Error, "Quillon", "number " + std::to_string(i) + "!");
    Process();
    SendMessageW(ControlOf("1100 errors"), BM_CLICK, 0, 0);
    Process();
    std::string list;
    for (HWND const one : Controls())
        if ((GetWindowLongPtrW(one, GWL_STYLE) & ES_MULTILINE) != 0 && IsWindowVisible(one) != 0) {
            const auto lines = SendMessageW(one, EM_GETLINECOUNT, 0, 0);
            if (lines > 1) {
                EXPECT_EQ(lines, 1000);
                list = TextOf(one);
            }
        }
    EXPECT_THAT(list, HasSubstr("Quillon: number 100!"));
    EXPECT_THAT(list, Not(HasSubstr("number 99!")));
    EXPECT_THAT(list, Not(HasSubstr("not an error")));
}

}  // namespace
}  // namespace quillon
