#include "app/win32/library_dialog.h"

#include <algorithm>

#include "app/text/display_text.h"
#include "app/win32/common_controls.h"

namespace quillon {
namespace {

constexpr const wchar_t* ClassName = L"QuillonLibraryWindow";
constexpr const wchar_t* AbortCaption = L"&Abort";
constexpr const wchar_t* AbortingCaption = L"Aborting";
constexpr const wchar_t* AbortingRemark = L"Aborting; the run stops after the current step.";

/// How narrow the window may be made, in heights of a line.
constexpr int LeastWidth = 26;
constexpr int LeastErrorLines = 4;

constexpr int Fine = 1000;  // steps of the bar

/// What has no control behind it: the window's own place for the keyboard at first.
constexpr DWORD DialogStyle = WS_OVERLAPPEDWINDOW & ~static_cast<DWORD>(WS_MAXIMIZEBOX);

}  // namespace

LRESULT CALLBACK LibraryDialog::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        const auto* const made = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(made->lpCreateParams));
    }
    auto* const dialog = reinterpret_cast<LibraryDialog*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (dialog == nullptr || dialog->window_ == nullptr)
        return DefWindowProcW(window, message, wParam, lParam);
    return dialog->Handle(message, wParam, lParam);
}

LibraryDialog::LibraryDialog() {
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_PROGRESS_CLASS | ICC_STANDARD_CLASSES};
    CommonControlFunction<decltype(InitCommonControlsEx)>("InitCommonControlsEx")(&controls);
    // A long step of the run is no reason to show the window as one that hangs.
    DisableProcessWindowsGhosting();
    WNDCLASSEXW kind{};
    kind.cbSize = sizeof kind;
    kind.lpfnWndProc = Procedure;
    kind.hInstance = GetModuleHandleW(nullptr);
    kind.hIcon = LoadIconW(kind.hInstance, MAKEINTRESOURCEW(1));
    kind.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // the arrow
    kind.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
    kind.lpszClassName = ClassName;
    RegisterClassExW(&kind);
    window_ = CreateWindowExW(WS_EX_CONTROLPARENT, ClassName, Shown(FormCaption).c_str(),
                              DialogStyle | WS_CLIPCHILDREN, CW_USEDEFAULT, CW_USEDEFAULT, 0, 0,
                              nullptr, nullptr, kind.hInstance, this);
    MakeControls();
    ChooseFonts(GetDpiForWindow(window_));
    ShowProgress({});
}

LibraryDialog::~LibraryDialog() {
    if (window_ == nullptr) return;
    HWND const window = window_;
    window_ = nullptr;
    DestroyWindow(window);
    UnregisterClassW(ClassName, GetModuleHandleW(nullptr));
}

/// In the order in which the keyboard goes through them, and a reader of the screen reads them: a
/// label names the box behind it.
void LibraryDialog::MakeControls() {
    aLblReconcile_ = Control(window_, L"STATIC", SS_NOPREFIX, Shown(ReconcileCaption));
    aLblReconcile_.Show(false);
    lamps_ = PhaseLamps(window_);
    itemLabel_ = Control(window_, L"STATIC", SS_LEFT, L"&Current");
    aItem_ = MakePathBox(window_);
    errorLabel_ = Control(window_, L"STATIC", SS_LEFT, L"&Errors");
    aError_ = MakePathBox(window_);
    progress_ = Control(window_, PROGRESS_CLASSW, PBS_SMOOTH, L"Progress of the phase");
    progress_.Send(PBM_SETRANGE32, 0, Fine);
    percent_ = Control(window_, L"STATIC", SS_RIGHT | SS_NOPREFIX);
    errorsButton_ =
        Control(window_, L"BUTTON", WS_TABSTOP | BS_AUTOCHECKBOX | BS_PUSHLIKE, L"No errors");
    errorsButton_.Enable(false);
    elapsed_ = Control(window_, L"STATIC", SS_RIGHT | SS_NOPREFIX);
    errors_ = Control(window_, L"EDIT",
                      WS_TABSTOP | WS_VSCROLL | WS_HSCROLL | ES_READONLY | ES_MULTILINE |
                          ES_AUTOVSCROLL | ES_AUTOHSCROLL,
                      L"", WS_EX_CLIENTEDGE);
    errors_.Send(EM_SETLIMITTEXT, 0x7FFFFFFE);
    errors_.Show(false);
    lblver_ = Control(window_, L"STATIC", SS_NOPREFIX);
    remark_ = Control(window_, L"STATIC", SS_NOPREFIX);
    aAbort_ = Control(window_, L"BUTTON", WS_TABSTOP | BS_PUSHBUTTON, AbortCaption);
}

void LibraryDialog::ChooseFonts(UINT dotsPerInch) {
    fonts_.Choose(dotsPerInch);
    lamps_.SetFont(fonts_);
    for (const Control* const control :
         {&itemLabel_, &aItem_, &errorLabel_, &aError_, &percent_, &errorsButton_, &elapsed_,
          &errors_, &lblver_, &remark_, &aAbort_})
        control->Send(WM_SETFONT, reinterpret_cast<WPARAM>(fonts_.Plain()), TRUE);
    aLblReconcile_.Send(WM_SETFONT, reinterpret_cast<WPARAM>(fonts_.Bold()), TRUE);
}

SIZE LibraryDialog::WindowSizeFor(int width, int height) const {
    RECT whole{0, 0, width, height};
    AdjustWindowRectExForDpi(&whole, DialogStyle, FALSE, WS_EX_CONTROLPARENT,
                             GetDpiForWindow(window_));
    return {whole.right - whole.left, whole.bottom - whole.top};
}

LRESULT LibraryDialog::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE:
            Arrange();
            return 0;
        case WM_GETMINMAXINFO: {
            const SIZE least = WindowSizeFor(LeastWidth * fonts_.Height(),
                                             NeededHeight(errorsAreOpen_ ? LeastErrorLines : 0));
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {least.cx, least.cy};
            return 0;
        }
        case WM_DPICHANGED: {
            ChooseFonts(HIWORD(wParam));
            const RECT& place = *reinterpret_cast<const RECT*>(lParam);
            SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left,
                         place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
            Arrange();
            return 0;
        }
        case WM_COMMAND:
            if (reinterpret_cast<HWND>(lParam) == aAbort_.Handle()) PressAbort();
            if (reinterpret_cast<HWND>(lParam) == errorsButton_.Handle()) ToggleErrors();
            return 0;
        // Closing, and the end of the session, are other ways to say Abort; the window stays until
        // the run has stopped.
        case WM_CLOSE:
            PressAbort();
            return 0;
        case WM_QUERYENDSESSION:
            PressAbort();
            return TRUE;
        default:
            return DefWindowProcW(window_, message, wParam, lParam);
    }
}

bool LibraryDialog::HandleKey(const MSG& message) {
    if (message.message != WM_KEYDOWN) return false;
    // Escape leads to the button instead of pressing it: an abort cannot be taken back.
    if (message.wParam == VK_ESCAPE) {
        SetFocus(aAbort_.Handle());
        return true;
    }
    HWND const focus = GetFocus();
    const bool isButton = focus == aAbort_.Handle() || focus == errorsButton_.Handle();
    if (message.wParam != VK_RETURN) return false;
    if (isButton) SendMessageW(focus, BM_CLICK, 0, 0);
    return true;
}

void LibraryDialog::ProcessEvents() {
    MSG message;
    while (window_ != nullptr && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
        if (HandleKey(message) || IsDialogMessageW(window_, &message) != 0) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    UpdateWindow(window_);
}

void LibraryDialog::Show() {
    Grow();
    ShowWindow(window_, SW_SHOWNORMAL);
    // The window itself has the keyboard at first: a key that was meant for another program, whose
    // place this one has taken on the screen, must not press Abort.
    SetFocus(window_);
}

void LibraryDialog::Update(const FormState& state, std::chrono::seconds elapsed) {
    const bool otherHeading = aLblReconcile_.IsShown() != state.aLblReconcile;
    aLblReconcile_.Show(state.aLblReconcile);
    const bool otherIndicators = lamps_.Update(state.aPhase);
    if (otherHeading || otherIndicators) Grow();
    aItem_.SetText(Shown(state.aItem));
    aError_.SetText(Shown(state.aError));
    lblver_.SetText(Shown(state.lblver));
    elapsed_.SetText(L"Elapsed " + Shown(ElapsedText(elapsed)));
    ShowProgress(state.progress);
    ShowErrors();
    if (state.aborting) ShowAborting();
}

void LibraryDialog::ShowProgress(const PhaseProgress& progress) {
    const double part = progress.Part();
    const bool isKnown = progress.IsKnown() || part > 0;
    const int shown = isKnown ? std::clamp(static_cast<int>(part * Fine), 0, Fine) : -2;
    if (shown == shownPart_) return;
    const bool otherKind = (shown < 0) != (shownPart_ < 0) || shownPart_ == -1;
    shownPart_ = shown;
    if (otherKind) {
        // A bar that wanders only says that work is going on.
        const LONG_PTR style = GetWindowLongPtrW(progress_.Handle(), GWL_STYLE);
        const LONG_PTR other = isKnown ? style & ~static_cast<LONG_PTR>(PBS_MARQUEE)
                                       : style | static_cast<LONG_PTR>(PBS_MARQUEE);
        SetWindowLongPtrW(progress_.Handle(), GWL_STYLE, other);
        progress_.Send(PBM_SETMARQUEE, isKnown ? FALSE : TRUE, 50);
    }
    if (isKnown) progress_.Send(PBM_SETPOS, static_cast<WPARAM>(shown));
    percent_.SetText(isKnown ? std::to_wstring(shown * 100 / Fine) + L" %" : L"");
}

void LibraryDialog::AddError(std::string_view source, std::string_view message) {
    ++errorCount_;
    waiting_.push_back(Shown(source) + L": " + Shown(message));
    if (waiting_.size() > MostKept) waiting_.pop_front();
}

void LibraryDialog::ShowErrors() {
    if (errorCount_ != shownErrors_) {
        shownErrors_ = errorCount_;
        errorsButton_.Enable(true);
        errorsButton_.SetText(Shown(CountText(errorCount_, "error")));
    }
    if (!errorsAreOpen_ || waiting_.empty()) return;
    errors_.Send(WM_SETREDRAW, FALSE);
    std::wstring added;  // all at once: each call looks the whole text over
    for (const std::wstring& line : waiting_)
        added += (inList_++ == 0 ? L"" : L"\r\n") + line;
    waiting_.clear();
    const int before = GetWindowTextLengthW(errors_.Handle());
    errors_.Send(EM_SETSEL, static_cast<WPARAM>(before), before);
    errors_.Send(EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(added.c_str()));
    if (inList_ > MostKept) {
        const LRESULT kept = errors_.Send(EM_LINEINDEX, inList_ - MostKept);
        errors_.Send(EM_SETSEL, 0, kept);
        errors_.Send(EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L""));
        inList_ = MostKept;
    }
    const int end = GetWindowTextLengthW(errors_.Handle());
    errors_.Send(EM_SETSEL, static_cast<WPARAM>(end), end);
    errors_.Send(WM_SETREDRAW, TRUE);
    errors_.Send(EM_SCROLLCARET);
    InvalidateRect(errors_.Handle(), nullptr, TRUE);
}

void LibraryDialog::ToggleErrors() {
    RECT place{};
    GetWindowRect(window_, &place);
    if (!errorsAreOpen_) heightWithoutErrors_ = place.bottom - place.top;
    errorsAreOpen_ = !errorsAreOpen_;
    errors_.Show(errorsAreOpen_);
    if (errorsAreOpen_) {
        Grow();
        ShowErrors();
        return;
    }
    SetWindowPos(window_, nullptr, 0, 0, place.right - place.left, heightWithoutErrors_,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    Arrange();
}

void LibraryDialog::PressAbort() {
    abortPressed_ = true;
    ShowAborting();
}

void LibraryDialog::ShowAborting() {
    if (showsAborting_) return;
    showsAborting_ = true;
    aAbort_.SetText(AbortingCaption);
    // A control that cannot be pressed must not have the keyboard.
    if (GetFocus() == aAbort_.Handle()) SetFocus(window_);
    aAbort_.Enable(false);
    remark_.SetText(AbortingRemark);
    Arrange();
    NotifyWinEvent(EVENT_SYSTEM_ALERT, remark_.Handle(), OBJID_CLIENT, CHILDID_SELF);
}

}  // namespace quillon
