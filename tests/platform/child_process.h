#pragma once

#include <array>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillon {

/// What an action returns when a process of its own does it, which `prepare` changes beforehand.
inline std::string InChildProcess(const std::function<void()>& prepare,
                                  const std::function<std::string()>& action) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) return "no pipe";
    const pid_t child = fork();
    if (child == 0) {
        prepare();
        const std::string answer = action();
        const ssize_t written = write(ends[1], answer.data(), answer.size());
        _exit(written == static_cast<ssize_t>(answer.size()) ? 0 : 1);
    }
    close(ends[1]);
    std::string answer;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = read(ends[0], buffer.data(), buffer.size())) > 0;)
        answer.append(buffer.data(), static_cast<std::size_t>(count));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? answer : "the process failed";
}

/// The action's answer without the super-user's rights.
inline std::string AsOrdinaryUser(const std::function<std::string()>& action) {
    constexpr uid_t Nobody = 65534;
    const auto giveUpRights = [] {
        if (geteuid() != 0) return;
        if (setgid(Nobody) != 0 || setuid(Nobody) != 0) _exit(1);
    };
    return InChildProcess(giveUpRights, action);
}

/// As if somebody had made room on the disk.
inline void LetFilesGrow() {
    rlimit most{};
    if (getrlimit(RLIMIT_FSIZE, &most) != 0) _exit(1);
    most.rlim_cur = most.rlim_max;
    if (setrlimit(RLIMIT_FSIZE, &most) != 0) _exit(1);
}

/// The action's answer where no file may grow beyond some bytes, as on a full disk.
inline std::string WithFilesUpTo(rlim_t bytes, const std::function<std::string()>& action) {
    const auto limit = [bytes] {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit most{};
        if (getrlimit(RLIMIT_FSIZE, &most) != 0) _exit(1);
        most.rlim_cur = bytes;
        if (setrlimit(RLIMIT_FSIZE, &most) != 0) _exit(1);
    };
    return InChildProcess(limit, action);
}

}  // namespace quillon
