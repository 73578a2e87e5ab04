#include "bench/child_process.h"

#include <chrono>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillon::bench {
namespace {

double Seconds(const timeval& time) {
    constexpr double Microsecond = 1e-6;
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * Microsecond;
}

}  // namespace

Usage RunProcess(const std::vector<std::string>& command) {
    std::vector<std::string> words = command;
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    const int failure =
        posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) throw std::runtime_error("cannot start " + command[0]);

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

Usage RunToSuccess(const std::vector<std::string>& command) {
    const Usage used = RunProcess(command);
    if (used.exitStatus == 0) return used;
    throw std::runtime_error(command.at(0) + ' ' + command.at(1) + " ends with " +
                             std::to_string(used.exitStatus));
}

}  // namespace quillon::bench
