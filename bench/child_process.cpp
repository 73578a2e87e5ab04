#include "bench/child_process.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <optional>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <string>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <termios.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace quillon::bench {
namespace {

double Seconds(const timeval& time) {
    constexpr double Microsecond = 1e-6;
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * Microsecond;
}

/// A terminal that shows what is written on it to nobody.
class BlindTerminal {
  public:
    BlindTerminal() : master_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0)
            throw std::runtime_error("no terminal can be opened");
        const winsize size{.ws_row = 24, .ws_col = 80, .ws_xpixel = 0, .ws_ypixel = 0};
        ioctl(master_, TIOCSWINSZ, &size);
        name_ = ptsname(master_);
        // Kept open, so that reading does not end before the program has opened it.
        slave_ = open(name_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        reader_ = std::thread([this] { Drain(); });
    }
    BlindTerminal(const BlindTerminal&) = delete;
    BlindTerminal& operator=(const BlindTerminal&) = delete;
    ~BlindTerminal() {
        close(slave_);
        reader_.join();
        close(master_);
    }

    const std::string& Name() const { return name_; }

  private:
    void Drain() const {
        std::array<char, 65536> buffer{};
        while (read(master_, buffer.data(), buffer.size()) > 0) {
        }
    }

    int master_;
    int slave_ = -1;
    std::string name_;
    std::thread reader_;
};

/// The processor time of a process that has not been waited for, to the nanosecond.
double ProcessorOf(pid_t process) {
    constexpr double Nanosecond = 1e-9;
    clockid_t clock{};
    timespec time{};
    if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0)
        throw std::runtime_error("the processor time of a process cannot be read");
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * Nanosecond;
}

/// What a program prints, line by line.
class LinePipe {
  public:
    LinePipe() {
        if (pipe2(ends_.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe can be made");
    }
    LinePipe(const LinePipe&) = delete;
    LinePipe& operator=(const LinePipe&) = delete;
    ~LinePipe() {
        for (const int end : ends_)
            if (end >= 0) close(end);
    }

    int Writer() const { return ends_[1]; }

    void Tell(pid_t child, const std::function<void(std::string_view, double)>& onLine) {
        close(std::exchange(ends_[1], -1));
        std::array<char, 65536> buffer{};
        std::string pending;
        for (;;) {
            const ssize_t count = read(ends_[0], buffer.data(), buffer.size());
            if (count <= 0) return;
            const double processor = ProcessorOf(child);
            pending.append(buffer.data(), static_cast<std::size_t>(count));
            std::size_t begin = 0;
            for (std::size_t end = 0; (end = pending.find('\n', begin)) != std::string::npos;
                 begin = end + 1)
                onLine(std::string_view(pending).substr(begin, end - begin), processor);
            pending.erase(0, begin);
        }
    }

  private:
    std::array<int, 2> ends_{-1, -1};
};

/// What `posix_spawn` is told besides the command.
class SpawnPlan {
  public:
    explicit SpawnPlan(const Surroundings& surroundings) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawnattr_init(&attributes_);
        if (surroundings.terminal) {
            // The leader of a new session gets the first terminal it opens as its own.
            posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSID);
            terminal_.emplace();
        }
        const std::string device = terminal_ ? terminal_->Name() : "/dev/null";
        for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO})
            posix_spawn_file_actions_addopen(&actions_, descriptor, device.c_str(), O_RDWR, 0);
        if (surroundings.onLine) lines_.emplace();
        if (lines_) posix_spawn_file_actions_adddup2(&actions_, lines_->Writer(), STDOUT_FILENO);

        // Of two values of one name the first counts.
        for (const std::string& variable : surroundings.environment)
            environment_.push_back(const_cast<char*>(variable.c_str()));
        for (char** variable = environ; *variable != nullptr; ++variable)
            environment_.push_back(*variable);
        environment_.push_back(nullptr);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;
    ~SpawnPlan() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }

    /// Nobody sees its complaints.
    void Silence() {
        posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    }

    pid_t Start(const std::vector<std::string>& command) {
        std::vector<char*> arguments;
        arguments.reserve(command.size() + 1);
        for (const std::string& word : command)
            arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        pid_t child = 0;
        if (posix_spawn(&child, arguments[0], &actions_, &attributes_, arguments.data(),
                        environment_.data()) != 0)
            throw std::runtime_error("cannot start " + command[0]);
        return child;
    }

    /// Returns at the end of what it prints.
    void TellLines(pid_t child, const Surroundings& surroundings) {
        if (lines_) lines_->Tell(child, surroundings.onLine);
    }

  private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
    std::optional<BlindTerminal> terminal_;
    std::optional<LinePipe> lines_;
    std::vector<char*> environment_;
};

}  // namespace

Usage RunProcess(const std::vector<std::string>& command, const Surroundings& surroundings) {
    SpawnPlan plan(surroundings);
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = plan.Start(command);
    plan.TellLines(child, surroundings);
    int status = 0;
    rusage used{};
    if (wait4(child, &status, 0, &used) != child) throw std::runtime_error("lost a process");
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    constexpr std::size_t Kilobyte = 1024;
    return {.seconds = elapsed.count(),
            .processor = Seconds(used.ru_utime) + Seconds(used.ru_stime),
            .peakMemory = static_cast<std::size_t>(used.ru_maxrss) * Kilobyte,
            .exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status)};
}

Usage RunToSuccess(const std::vector<std::string>& command, const Surroundings& surroundings) {
    const Usage used = RunProcess(command, surroundings);
    if (used.exitStatus == 0) return used;
    throw std::runtime_error(command.at(0) + ' ' + command.at(1) + " ends with " +
                             std::to_string(used.exitStatus));
}

Companion::Companion(const std::vector<std::string>& command) {
    SpawnPlan plan({});
    plan.Silence();
    process_ = plan.Start(command);
}

Companion::~Companion() {
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
}

double Companion::Processor() const {
    return ProcessorOf(process_);
}

std::optional<std::string> InstalledProgram(std::string_view name) {
    const char* const known = std::getenv("PATH");
    std::istringstream folders(known == nullptr ? "" : known);
    for (std::string folder; std::getline(folders, folder, ':');) {
        std::string program = folder + '/';
        program += name;
        if (access(program.c_str(), X_OK) == 0) return program;
    }
    return std::nullopt;
}

}  // namespace quillon::bench
