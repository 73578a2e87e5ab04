#include "app/win32/control.h"

#include <utility>

#include "app/text/display_text.h"
#include "app/win32/common_controls.h"
#include "platform/windows/wide_text.h"

namespace quillon {
namespace {

constexpr UINT_PTR OurSubclass = 1;

LRESULT HandleAsUsual(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
    static auto* const handle = CommonControlFunction<decltype(DefSubclassProc)>("DefSubclassProc");
    return handle(control, message, wParam, lParam);
}

void Intercept(const Control& control, SUBCLASSPROC procedure) {
    CommonControlFunction<decltype(SetWindowSubclass)>("SetWindowSubclass")(
        control.Handle(), procedure, OurSubclass, 0);
}

/// Set while the run selects a lamp; what else would do that is not heard.
bool runSelects = false;

void DrawShortened(HWND box) {
    PAINTSTRUCT painting{};
    HDC const canvas = BeginPaint(box, &painting);
    RECT place{};
    GetClientRect(box, &place);
    FillRect(canvas, &place, GetSysColorBrush(COLOR_BTNFACE));
    SendMessageW(box, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&place));
    const auto margin = static_cast<DWORD>(SendMessageW(box, EM_GETMARGINS, 0, 0));
    place.left += LOWORD(margin);
    HGDIOBJ const before =
        SelectObject(canvas, reinterpret_cast<HGDIOBJ>(SendMessageW(box, WM_GETFONT, 0, 0)));
    SetBkMode(canvas, TRANSPARENT);
    SetTextColor(canvas, GetSysColor(COLOR_WINDOWTEXT));
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(box)) + 1, L'\0');
    text.resize(
        static_cast<std::size_t>(GetWindowTextW(box, text.data(), static_cast<int>(text.size()))));
    DrawTextW(canvas, text.c_str(), static_cast<int>(text.size()), &place,
              DT_SINGLELINE | DT_NOPREFIX | DT_PATH_ELLIPSIS);
    SelectObject(canvas, before);
    EndPaint(box, &painting);
}

LRESULT CALLBACK PathBoxProcedure(HWND box, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                  DWORD_PTR) {
    if (message == WM_PAINT && GetFocus() != box) {
        DrawShortened(box);
        return 0;
    }
    const LRESULT result = HandleAsUsual(box, message, wParam, lParam);
    if (message == WM_SETFOCUS || message == WM_KILLFOCUS) InvalidateRect(box, nullptr, TRUE);
    return result;
}

LRESULT CALLBACK LampProcedure(HWND lamp, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                               DWORD_PTR) {
    switch (message) {
        case WM_NCHITTEST:
            return HTTRANSPARENT;
        case WM_GETDLGCODE:
            return DLGC_STATIC;
        case BM_CLICK:
            return 0;
        case BM_SETCHECK:
            if (!runSelects) return 0;
            break;
        default:
            break;
    }
    return HandleAsUsual(lamp, message, wParam, lParam);
}

}  // namespace

Control::Control(HWND parent, const wchar_t* kind, DWORD style, std::wstring text,
                 DWORD extendedStyle)
    : text_(std::move(text)) {
    handle_ = CreateWindowExW(extendedStyle, kind, text_.c_str(), WS_CHILD | WS_VISIBLE | style, 0,
                              0, 0, 0, parent, nullptr, GetModuleHandleW(nullptr), nullptr);
}

void Control::SetText(const std::wstring& text) {
    if (text == text_) return;
    text_ = text;
    SetWindowTextW(handle_, text.c_str());
}

void Control::Show(bool visible) {
    if (visible == isShown_) return;
    isShown_ = visible;
    ShowWindow(handle_, visible ? SW_SHOWNA : SW_HIDE);
}

void Control::Enable(bool enabled) {
    if (enabled == isEnabled_) return;
    isEnabled_ = enabled;
    EnableWindow(handle_, enabled ? TRUE : FALSE);
}

void Control::Place(int left, int top, int width, int height) {
    const RECT place{left, top, left + width, top + height};
    if (EqualRect(&place, &place_) != 0) return;
    place_ = place;
    MoveWindow(handle_, left, top, width, height, TRUE);
}

Fonts::~Fonts() {
    Clear();
}

void Fonts::Clear() {
    if (plain_ != nullptr) DeleteObject(plain_);
    if (bold_ != nullptr) DeleteObject(bold_);
}

void Fonts::Choose(UINT dotsPerInch) {
    Clear();
    NONCLIENTMETRICSW chosen{};
    chosen.cbSize = sizeof chosen;
    SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof chosen, &chosen, 0, dotsPerInch);
    plain_ = CreateFontIndirectW(&chosen.lfMessageFont);
    chosen.lfMessageFont.lfWeight = FW_BOLD;
    bold_ = CreateFontIndirectW(&chosen.lfMessageFont);
    HDC const screen = GetDC(nullptr);
    HGDIOBJ const before = SelectObject(screen, plain_);
    TEXTMETRICW measures{};
    GetTextMetricsW(screen, &measures);
    height_ = measures.tmHeight;
    SelectObject(screen, before);
    ReleaseDC(nullptr, screen);
}

int Fonts::WidthOf(std::wstring_view text) const {
    HDC const screen = GetDC(nullptr);
    HGDIOBJ const before = SelectObject(screen, plain_);
    SIZE size{};
    GetTextExtentPoint32W(screen, text.data(), static_cast<int>(text.size()), &size);
    SelectObject(screen, before);
    ReleaseDC(nullptr, screen);
    return size.cx;
}

std::wstring Shown(std::string_view text) {
    return WideText(OneLine(text));
}

std::wstring Caption(std::string_view text) {
    std::wstring caption;
    for (const wchar_t letter : Shown(text))
        caption.append(letter == L'&' ? 2 : 1, letter);
    return caption;
}

Control MakePathBox(HWND parent) {
    Control box(parent, L"EDIT", WS_TABSTOP | ES_READONLY | ES_AUTOHSCROLL, L"", WS_EX_CLIENTEDGE);
    Intercept(box, PathBoxProcedure);
    return box;
}

Control MakeLamp(HWND parent) {
    Control lamp(parent, L"BUTTON", BS_RADIOBUTTON);
    Intercept(lamp, LampProcedure);
    return lamp;
}

void SelectLamp(const Control& lamp, bool selected) {
    runSelects = true;
    lamp.Send(BM_SETCHECK, selected ? BST_CHECKED : BST_UNCHECKED);
    runSelects = false;
}

}  // namespace quillon
