#include "tests/faults/preload/fault_plan.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <mutex>
#include <set>
#include <string_view>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/faults/preload/lasting.h"
#include "tests/faults/preload/unsynced_files.h"

namespace quillon::faults {
namespace {

std::string Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

const char* NameOf(Kind kind) {
    return kind == Kind::Reading ? "reading" : "changing";
}

/// Whether the call takes room on the disk.
bool TakesRoom(std::string_view call) {
    for (const std::string_view start : {"write", "pwrite", "copy_file_range", "sendfile", "mkdir",
                                         "symlink", "fallocate", "posix_fallocate"})
        if (call.starts_with(start)) return true;
    return false;
}

struct NamedError {
    std::string_view name;
    int number;
};
constexpr std::array Errors{NamedError{"EIO", EIO}, NamedError{"EACCES", EACCES},
                            NamedError{"ESTALE", ESTALE}, NamedError{"ENOENT", ENOENT},
                            NamedError{"ENOSPC", ENOSPC}};

/// What the environment asks for; README.md lists the variables.
class Plan {
  public:
    Order Meet(Kind kind, const char* call, const std::string& path) {
        const bool reading = kind == Kind::Reading;
        const long number = ++(reading ? readingCalls_ : changingCalls_);
        if (action_.empty()) {
            Record(NameOf(kind), number, call, path);
            return {};
        }
        if (action_ == "full" && !reading) return WhereTheDiskFills(number, call, path);
        if (number != at_ || reading != atReading_) return {};
        Record(NameOf(kind), number, call, path);
        return CarryOut();
    }

    void Note(const char* call, const std::string& path) {
        if (action_.empty()) Record("uncounted", 0, call, path);
    }

    [[nodiscard]] bool PowerIsCut() const { return action_ == "cut"; }
    [[nodiscard]] long long ToldTime() const { return time_; }

  private:
    /// From that call on there is no room any more but where it has been set aside before.
    Order WhereTheDiskFills(long number, std::string_view call, const std::string& path) {
        const std::scoped_lock lock(mutex_);
        const bool setsAside = call.find("fallocate") != std::string_view::npos;
        if (number < at_) {
            if (setsAside) withRoom_.insert(path);
            return {};
        }
        const bool fails = TakesRoom(call) && (setsAside || !withRoom_.contains(path));
        if (number == at_) Record(NameOf(Kind::Changing), number, std::string(call).c_str(), path);
        return {.error = fails ? ENOSPC : 0};
    }

    Order CarryOut() {
        if (action_ == "kill") KillProcess();
        if (action_ == "cut") {
            UnsyncedFiles::Get().Lose();
            KillProcess();
        }
        if (action_ == "abort") syscall(SYS_kill, getpid(), SIGTERM);
        if (action_ == "short") return {.half = true};
        if (action_ == "torn") return {.half = true, .endAfterHalf = true};
        for (const NamedError& error : Errors) {
            if (error.name == action_) return {.error = error.number};
        }
        return {};
    }

    /// A line of the record: kind, number, call, path. Written by the system's own calls, which
    /// nothing here counts.
    void Record(const char* kind, long number, const char* call, const std::string& path) const {
        const std::string line =
            std::string(kind) + '\t' + std::to_string(number) + '\t' + call + '\t' + path + '\n';
        const auto file =
            static_cast<int>(syscall(SYS_openat, AT_FDCWD, record_.c_str(),
                                     O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666));
        if (file < 0) return;
        syscall(SYS_write, file, line.data(), line.size());
        syscall(SYS_close, file);
    }

    std::string action_ = Variable("QUILLON_FAULT_DO");
    std::string record_ = Variable("QUILLON_FAULT_RECORD");
    bool atReading_ = Variable("QUILLON_FAULT_CALLS") != "changing";
    long at_ = std::atol(Variable("QUILLON_FAULT_AT").c_str());
    long long time_ = std::atoll(Variable("QUILLON_FAULT_TIME").c_str());
    std::mutex mutex_;
    std::set<std::string> withRoom_;  ///< paths
    std::atomic<long> readingCalls_ = 0;
    std::atomic<long> changingCalls_ = 0;
};

}  // namespace

Order Meet(Kind kind, const char* call, const std::string& path) {
    if (path.empty()) return {};
    const int before = errno;
    const Order order = Lasting<Plan>().Meet(kind, call, path);
    errno = before;
    return order;
}

void Note(const char* call, const std::string& path) {
    const int before = errno;
    if (!path.empty()) Lasting<Plan>().Note(call, path);
    errno = before;
}

void KillProcess() {
    while (true)
        syscall(SYS_kill, getpid(), SIGKILL);
}

bool PowerIsCut() {
    return Lasting<Plan>().PowerIsCut();
}

long long ToldTime() {
    return Lasting<Plan>().ToldTime();
}

}  // namespace quillon::faults
