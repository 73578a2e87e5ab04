#pragma once

#include <chrono>
#include <deque>
#include <string>
#include <string_view>

#include "app/win32/control.h"
#include "app/win32/phase_lamps.h"
#include "platform/window.h"

namespace quillon {

/// The form on a Windows desktop. It shows what `FormState` says, how long the run has taken and
/// how far the phase is, and has two things to press: Abort, and the list of errors. Its size
/// follows what is visible, never a text.
class LibraryDialog {
  public:
    LibraryDialog();
    LibraryDialog(const LibraryDialog&) = delete;
    LibraryDialog& operator=(const LibraryDialog&) = delete;
    ~LibraryDialog();

    void Update(const FormState& state, std::chrono::seconds elapsed);
    void AddError(std::string_view source, std::string_view message);
    void Show();

    /// Lets the events run that wait, and draws.
    void ProcessEvents();

    /// Whether the person has pressed Abort or closed the window. Stays true once it is.
    bool AbortPressed() const { return abortPressed_; }

    HWND Handle() const { return window_; }

    /// Of errors that the list holds; the log has them all.
    static constexpr std::size_t MostKept = 1000;

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
    bool HandleKey(const MSG& message);
    void MakeControls();
    void ChooseFonts(UINT dotsPerInch);
    void Arrange();
    int ArrangeFields(int left, int top, int width);
    void ArrangeErrors(int left, int top, int width, int bottom);
    /// Of all that is visible, in dots; the list of errors with `errorLines` lines.
    int NeededHeight(int errorLines) const;
    SIZE WindowSizeFor(int width, int height) const;
    void Grow();
    void PressAbort();
    void ShowAborting();
    void ShowProgress(const PhaseProgress& progress);
    void ShowErrors();
    void ToggleErrors();
    int RowHeight() const { return fonts_.Height() * 3 / 2; }
    int Margin() const { return fonts_.Height() * 3 / 4; }

    HWND window_ = nullptr;
    Fonts fonts_;
    PhaseLamps lamps_;
    Control aLblReconcile_, itemLabel_, aItem_, errorLabel_, aError_, progress_, percent_,
        errorsButton_, elapsed_, errors_, lblver_, remark_, aAbort_;
    std::deque<std::wstring> waiting_;  ///< errors that are not in the list yet
    std::size_t errorCount_ = 0, shownErrors_ = 0, inList_ = 0;
    int heightWithoutErrors_ = 0;  ///< of the window, when the list was opened
    int shownPart_ = -1;           ///< of the phase, in thousandths; -2 for an unknown one
    bool errorsAreOpen_ = false, abortPressed_ = false, showsAborting_ = false;
};

}  // namespace quillon
