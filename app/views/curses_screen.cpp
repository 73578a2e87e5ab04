#define NCURSES_NOMACROS
#include "app/views/curses_screen.h"

#include <array>
#include <chrono>
#include <clocale>
#include <cstdlib>
#include <ncurses.h>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utf8proc.h>

#include "app/views/captured_output.h"
#include "app/views/output_channel.h"
#include "app/views/terminal_capabilities.h"
#include "app/views/terminal_rescue.h"

namespace quillon {
namespace {

constexpr std::chrono::milliseconds LastPatience{1000};
constexpr short ProgressPair = 1, ErrorPair = 2;

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

bool ColoursAreWanted() {
    const char* const refused = std::getenv("NO_COLOR");
    return refused == nullptr || *refused == '\0';
}

}  // namespace

/// Curses writes into memory, which is passed on as fast as the terminal takes it; curses itself
/// would wait for it.
class CursesScreen::Implementation {
  public:
    /// False where the terminal cannot be used.
    bool Open() {
        if (output_.Stream() == nullptr) return false;
        // Unlike initscr, newterm leaves the process alive where it fails.
        screen_ = newterm(nullptr, output_.Stream(), stdin);
        if (screen_ == nullptr || !TerminalPositionsCursor()) return false;
        // Nothing is read through curses, so it need not look whether there is something.
        typeahead(-1);
        curs_set(0);
        ChooseColours();
        waiting_ = output_.Take();
        rescue_.LeaveScreenWith(STDOUT_FILENO, TerminalLeavingSequence());
        return true;
    }

    ScreenSize Size() {
        winsize size{};
        if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0 &&
            (size.ws_col != getmaxx(stdscr) || size.ws_row != getmaxy(stdscr))) {
            resizeterm(size.ws_row, size.ws_col);
            // The terminal may have moved what it showed.
            clearok(curscr, true);
        }
        return {static_cast<std::size_t>(getmaxx(stdscr)),
                static_cast<std::size_t>(getmaxy(stdscr))};
    }

    void Draw(const std::vector<ScreenLine>& lines) {
        const SuspensionDelay whole;
        if (!rescue_.InForeground()) return;
        if (!rescue_.Taken()) TakeTerminal();
        PassOn();
        if (!waiting_.empty() || channel_.Broken()) return;
        Paint(lines);
        wrefresh(stdscr);
        waiting_ = output_.Take();
        PassOn();
    }

    std::string ReadInput() {
        std::string input;
        if (!rescue_.Taken() || !rescue_.InForeground()) return input;
        std::array<char, 256> piece{};
        const ssize_t count = read(STDIN_FILENO, piece.data(), piece.size());
        if (count > 0) input.assign(piece.data(), static_cast<std::size_t>(count));
        return input;
    }

    Implementation() = default;
    ~Implementation() {
        if (screen_ == nullptr) return;
        endwin();
        if (rescue_.Taken()) {
            waiting_ += output_.Take();
            while (!waiting_.empty() && channel_.WaitForRoom(LastPatience))
                PassOn();
        }
        delscreen(screen_);
    }
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;

  private:
    void ChooseColours() {
        if (!ColoursAreWanted() || !has_colors()) return;
        start_color();
        const bool keepsBackground = use_default_colors() == OK;
        const short background = keepsBackground ? -1 : COLOR_BLACK;
        init_pair(ProgressPair, COLOR_CYAN, background);
        init_pair(ErrorPair, COLOR_RED, background);
        coloured_ = true;
    }

    void TakeTerminal() {
        if (drawn_) {
            // The screen was left without curses knowing. After its own end it starts again.
            endwin();
            output_.Take();
            waiting_.clear();
        }
        drawn_ = true;
        rescue_.Take();
    }

    void PassOn() {
        waiting_.erase(0, channel_.Write(waiting_));
        if (channel_.Broken()) waiting_.clear();
    }

    void Paint(const std::vector<ScreenLine>& lines) const {
        werase(stdscr);
        int row = 0;
        for (const ScreenLine& line : lines) {
            wmove(stdscr, row++, 0);
            // What a terminal takes for wider than it was counted may have run on into this line.
            wclrtoeol(stdscr);
            for (const ScreenSpan& span : line) {
                const std::wstring text = WideText(span.text);
                wattrset(stdscr, static_cast<int>(Attributes(span.style)));
                waddnwstr(stdscr, text.data(), static_cast<int>(text.size()));
            }
            wattrset(stdscr, static_cast<int>(A_NORMAL));
        }
    }

    chtype Attributes(ScreenStyle style) const {
        switch (style) {
            case ScreenStyle::Usual:
                return A_NORMAL;
            case ScreenStyle::Strong:
                return A_BOLD;
            case ScreenStyle::Faint:
                return A_DIM;
            case ScreenStyle::Progress:
                return coloured_ ? Colour(ProgressPair) : A_NORMAL;
            case ScreenStyle::Error:
                return coloured_ ? Colour(ErrorPair) : A_BOLD;
        }
        return A_NORMAL;
    }

    static chtype Colour(short pair) { return static_cast<chtype>(COLOR_PAIR(pair)); }

    TerminalRescue rescue_;  ///< before curses, which would handle Ctrl-Z itself
    CapturedOutput output_;
    OutputChannel channel_{STDOUT_FILENO};
    std::string waiting_;  ///< what the terminal has not taken yet
    SCREEN* screen_ = nullptr;
    bool coloured_ = false;
    bool drawn_ = false;
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

ScreenSize CursesScreen::Size() {
    return implementation_->Size();
}

void CursesScreen::Draw(const std::vector<ScreenLine>& lines) {
    implementation_->Draw(lines);
}

std::string CursesScreen::ReadInput() {
    return implementation_->ReadInput();
}

}  // namespace quillon
