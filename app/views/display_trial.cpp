#include "app/views/display_trial.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <string_view>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "app/text/display_text.h"

namespace quillon {
namespace {

using Steady = std::chrono::steady_clock;

constexpr std::size_t LongestReason = 120;

std::string_view Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

/// The display as a person would name it.
std::string DisplayName() {
    for (const char* const name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DISPLAY"})
        if (!Variable(name).empty()) return fmt::format("{}={}", name, OneLine(Variable(name)));
    return "";
}

extern "C" void EndQuietly(int /*signal*/) {
    _exit(EXIT_FAILURE);
}

/// An open file; -1 where there is none to be had.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Number() const { return number_; }
    void Close() {
        if (number_ >= 0) close(number_);
        number_ = -1;
    }

  private:
    int number_;
};

/// The trial's own process. Its messages go to a file, so that nobody sees them, and what would
/// leave a core does not.
[[noreturn]] void Try(const std::function<void()>& open, const Descriptor& messages) {
    for (const int signal : {SIGABRT, SIGSEGV, SIGBUS, SIGILL, SIGFPE})
        std::signal(signal, EndQuietly);
    dup2(messages.Number(), STDERR_FILENO);
    open();
    _exit(EXIT_SUCCESS);
}

/// Waits until the other end of a pipe is closed; false when patience ends first.
bool IsClosedWithin(std::chrono::milliseconds patience, int pipeEnd) {
    const Steady::time_point deadline = Steady::now() + patience;
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Steady::now()).count();
        pollfd waiting{pipeEnd, POLLIN, 0};
        const int ready = poll(&waiting, 1, left > 0 ? static_cast<int>(left) : 0);
        if (ready >= 0 || errno != EINTR) return ready > 0;
    }
}

std::string StartOf(const Descriptor& file) {
    std::array<char, 4096> buffer{};
    const ssize_t count = pread(file.Number(), buffer.data(), buffer.size(), 0);
    return {buffer.data(), static_cast<std::size_t>(count < 0 ? 0 : count)};
}

/// The first thing that was said about the display, without the name of the part that said it.
std::string FirstReason(std::string_view messages) {
    while (!messages.empty()) {
        std::string_view line = messages.substr(0, messages.find('\n'));
        messages.remove_prefix(std::min(line.size() + 1, messages.size()));
        // Said wherever no session is, and no reason for anything.
        if (line.empty() || line.starts_with("QStandardPaths:")) continue;
        if (line.starts_with("qt.qpa.")) line.remove_prefix(std::min(line.find(' '), line.size()));
        const std::size_t start = std::min(line.find_first_not_of(' '), line.size());
        return FitColumns(OneLine(line.substr(start)), LongestReason);
    }
    return "";
}

}  // namespace

std::string WhyNoDisplay(const std::function<void()>& open, std::chrono::milliseconds patience) {
    if (DisplayName().empty())
        return "there is no display (neither DISPLAY nor WAYLAND_DISPLAY is set)";
    // The pipe ends with the trial, whatever programs that has started: these do not inherit it.
    std::array<int, 2> ends{-1, -1};
    const bool piped = pipe2(ends.data(), O_CLOEXEC) == 0;
    const Descriptor reader(ends[0]);
    Descriptor writer(ends[1]);
    const Descriptor messages(memfd_create("display-trial", MFD_CLOEXEC));
    const pid_t trial = piped && messages.Number() >= 0 ? fork() : -1;
    if (trial < 0) return "the display cannot be tested";
    if (trial == 0) Try(open, messages);
    writer.Close();
    const bool ended = IsClosedWithin(patience, reader.Number());
    if (!ended) kill(trial, SIGKILL);
    int status = 0;
    while (waitpid(trial, &status, 0) < 0 && errno == EINTR) {
    }
    if (!ended) return fmt::format("the display does not answer ({})", DisplayName());
    if (WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS) return "";
    const std::string reason = FirstReason(StartOf(messages));
    return fmt::format("the display cannot be opened ({}{}{})", DisplayName(),
                       reason.empty() ? "" : ": ", reason);
}

}  // namespace quillon
