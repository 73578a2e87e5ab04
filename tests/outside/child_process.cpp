#include "tests/outside/child_process.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <exception>
#include <iostream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace outside {
namespace {

int StatusAfter(const std::function<int()>& work) {
    try {
        return work();
    } catch (const std::exception& failure) {
        std::cerr << "in the child process: " << failure.what() << std::endl;
        return 2;
    }
}

void LimitFiles(const std::function<rlim_t(const rlimit&)>& most) {
    rlimit limit{};
    if (getrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(1);
    limit.rlim_cur = most(limit);
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(1);
}

}  // namespace

ChildProcess::ChildProcess(const std::function<int()>& work) : process_(fork()) {
    if (process_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (process_ == 0) _exit(StatusAfter(work));
}

ChildProcess::~ChildProcess() {
    Wait();
}

void ChildProcess::Kill() const {
    kill(process_, SIGKILL);
}

int ChildProcess::Wait() {
    if (!ended_) waitpid(process_, &status_, 0);
    ended_ = true;
    return status_;
}

void KillThisProcess() {
    std::raise(SIGKILL);
    _exit(1);
}

std::string InChildProcess(const std::function<void()>& prepare,
                           const std::function<std::string()>& action) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) return "no pipe";
    ChildProcess child([&] {
        prepare();
        const std::string answer = action();
        const ssize_t written = write(ends[1], answer.data(), answer.size());
        return written == static_cast<ssize_t>(answer.size()) ? 0 : 1;
    });
    close(ends[1]);
    std::string answer;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = read(ends[0], buffer.data(), buffer.size())) > 0;)
        answer.append(buffer.data(), static_cast<std::size_t>(count));
    close(ends[0]);
    const int status = child.Wait();
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? answer : "the process failed";
}

void GiveUpRights() {
    constexpr uid_t Nobody = 65534;
    if (geteuid() != 0) return;
    if (setgid(Nobody) != 0 || setuid(Nobody) != 0) _exit(1);
}

std::string AsOrdinaryUser(const std::function<std::string()>& action) {
    return InChildProcess(GiveUpRights, action);
}

void LetFilesGrow() {
    LimitFiles([](const rlimit& limit) { return limit.rlim_max; });
}

std::string WithFilesUpTo(std::size_t bytes, const std::function<std::string()>& action) {
    const auto limit = [bytes] {
        std::signal(SIGXFSZ, SIG_IGN);
        LimitFiles([bytes](const rlimit&) { return rlim_t{bytes}; });
    };
    return InChildProcess(limit, action);
}

}  // namespace outside
