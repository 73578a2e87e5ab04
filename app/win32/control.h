#pragma once

#include <string>
#include <string_view>

#include "platform/windows/system_headers.h"

namespace quillon {

/// One of the system's own controls, a child of a window that destroys it.
class Control {
  public:
    Control() = default;
    /// `kind` is the system's name of it, `style` what is special about it. Controls that carry a
    /// name are known to programs that read the screen aloud by it.
    Control(HWND parent, const wchar_t* kind, DWORD style, std::wstring text = {},
            DWORD extendedStyle = 0);

    HWND Handle() const { return handle_; }

    /// Changes the text if it is another one: a control that is drawn anew flickers.
    void SetText(const std::wstring& text);
    const std::wstring& Text() const { return text_; }
    void Show(bool visible);
    bool IsShown() const { return isShown_; }
    void Enable(bool enabled);
    void Place(int left, int top, int width, int height);
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return SendMessageW(handle_, message, wParam, lParam);
    }

  private:
    HWND handle_ = nullptr;
    std::wstring text_;
    RECT place_{};
    bool isShown_ = true, isEnabled_ = true;
};

/// The fonts of a screen's density and what texts measure in them.
class Fonts {
  public:
    Fonts() = default;
    Fonts(const Fonts&) = delete;
    Fonts& operator=(const Fonts&) = delete;
    ~Fonts();

    /// For a screen of so many dots an inch.
    void Choose(UINT dotsPerInch);

    HFONT Plain() const { return plain_; }
    HFONT Bold() const { return bold_; }
    /// Of a line of text, in dots.
    int Height() const { return height_; }
    int WidthOf(std::wstring_view text) const;

  private:
    void Clear();

    HFONT plain_ = nullptr, bold_ = nullptr;
    int height_ = 0;
};

/// A text from outside as a window may show it: on one line, without control characters.
std::wstring Shown(std::string_view text);

/// The same for controls that would take an ampersand for the mark of a shortcut key.
std::wstring Caption(std::string_view text);

/// A read-only box for a path. What is too long for it is shortened in the middle, where paths can
/// spare it, until somebody goes into the box; the whole text is there all the time.
Control MakePathBox(HWND parent);

/// A phase indicator: a radio button that only the run selects. Neither the mouse nor the keyboard
/// nor what assistive programs offer can change it.
Control MakeLamp(HWND parent);
void SelectLamp(const Control& lamp, bool selected);

}  // namespace quillon
