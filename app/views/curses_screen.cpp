#define NCURSES_NOMACROS
#include "app/views/curses_screen.h"

#include <clocale>
#include <langinfo.h>
#include <ncurses.h>
#include <string>
#include <string_view>
#include <utf8proc.h>

#include "app/views/terminal_rescue.h"

namespace quillon {
namespace {

/// Where the locale is left to its default, terminals of today are UTF-8 all the same.
void ChooseCharacterSet() {
    const char* const chosen = std::setlocale(LC_CTYPE, "");
    const std::string_view name = chosen == nullptr ? "C" : chosen;
    if (name == "C" || name == "POSIX") std::setlocale(LC_CTYPE, "C.UTF-8");
}

std::wstring WideText(std::string_view text) {
    std::wstring wide;
    wide.reserve(text.size());
    while (!text.empty()) {
        utf8proc_int32_t code = 0;
        const utf8proc_ssize_t length =
            utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                             static_cast<utf8proc_ssize_t>(text.size()), &code);
        wide += length > 0 ? static_cast<wchar_t>(code) : L'?';
        text.remove_prefix(length > 0 ? static_cast<std::size_t>(length) : 1);
    }
    return wide;
}

}  // namespace

class CursesScreen::Implementation {
  public:
    /// False where the terminal cannot be used.
    bool Open() {
        // Unlike initscr, newterm leaves the process alive then.
        screen_ = newterm(nullptr, stdout, stdin);
        if (screen_ == nullptr) return false;
        rescue_.Arm();
        cbreak();
        noecho();
        curs_set(0);
        nodelay(stdscr, true);
        keypad(stdscr, true);
        return true;
    }

    Implementation() = default;
    ~Implementation() {
        if (screen_ == nullptr) return;
        endwin();
        delscreen(screen_);
    }
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;

  private:
    TerminalRescue rescue_;
    SCREEN* screen_ = nullptr;
};

std::unique_ptr<CursesScreen> CursesScreen::Open() {
    ChooseCharacterSet();
    auto implementation = std::make_unique<Implementation>();
    if (!implementation->Open()) return nullptr;
    return std::unique_ptr<CursesScreen>(new CursesScreen(std::move(implementation)));
}

CursesScreen::CursesScreen(std::unique_ptr<Implementation> implementation)
    : implementation_(std::move(implementation)) {}

CursesScreen::~CursesScreen() = default;

ScreenSize CursesScreen::Size() const {
    const int columns = getmaxx(stdscr);
    const int rows = getmaxy(stdscr);
    if (columns <= 0 || rows <= 0) return {};
    return {static_cast<std::size_t>(columns), static_cast<std::size_t>(rows)};
}

void CursesScreen::Draw(const std::vector<ScreenLine>& lines) {
    werase(stdscr);
    int row = 0;
    for (const ScreenLine& line : lines) {
        const std::wstring text = WideText(line.text);
        if (line.emphasized) wattr_on(stdscr, A_BOLD, nullptr);
        wmove(stdscr, row++, 0);
        waddnwstr(stdscr, text.data(), static_cast<int>(text.size()));
        if (line.emphasized) wattr_off(stdscr, A_BOLD, nullptr);
    }
    wrefresh(stdscr);
}

std::optional<char> CursesScreen::ReadKey() {
    const int key = wgetch(stdscr);
    if (key == ERR) return std::nullopt;
    return key > 0 && key < 0x80 ? static_cast<char>(key) : '\0';
}

}  // namespace quillon
