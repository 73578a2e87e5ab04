#include "tests/outside/structural_check.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <map>
#include <sstream>
#include <stdexcept>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "tests/outside/shared_folder.h"
#include "tests/outside/temporary_folder.h"

namespace outside {
namespace {

/// The checker as a process of its own: to start it takes longer than most of its answers.
class Checker {
  public:
    Checker() {
        std::array<int, 2> ends{};
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
            throw std::system_error(errno, std::generic_category(), "socketpair");
        const pid_t process = fork();
        if (process == 0) {
            dup2(ends[1], STDIN_FILENO);
            dup2(ends[1], STDOUT_FILENO);
            execl(QUILLON_PYTHON, QUILLON_PYTHON, "-E", "-S", QUILLON_STRUCTURAL_CHECKER, nullptr);
            _exit(1);
        }
        close(ends[1]);
        socket_ = ends[0];
        if (process < 0) throw std::system_error(errno, std::generic_category(), "fork");
    }
    Checker(const Checker&) = delete;
    Checker& operator=(const Checker&) = delete;
    ~Checker() { close(socket_); }  ///< at which it ends

    /// Throws std::runtime_error where it has ended.
    CommandResult Ask(const std::filesystem::path& database, Strictness strictness) {
        const std::string question = (strictness == Strictness::Strict ? "--strict\t" : "") +
                                     std::filesystem::absolute(database).string() + '\n';
        if (send(socket_, question.data(), question.size(), MSG_NOSIGNAL) !=
            static_cast<ssize_t>(question.size()))
            throw std::runtime_error("the structural checker has ended");
        std::string head;
        while (!head.ends_with('\n'))
            head += Receive(1);
        std::istringstream numbers(head);
        CommandResult result;
        std::size_t size = 0;
        numbers >> result.status >> size;
        while (result.output.size() < size)
            result.output += Receive(size - result.output.size());
        return result;
    }

  private:
    /// Some bytes, up to so many.
    std::string Receive(std::size_t most) {
        std::string bytes(std::min(most, std::size_t{65536}), '\0');
        const ssize_t count = recv(socket_, bytes.data(), bytes.size(), 0);
        if (count <= 0) throw std::runtime_error("the structural checker has ended");
        bytes.resize(static_cast<std::size_t>(count));
        return bytes;
    }

    int socket_ = -1;
};

/// The one of this process; a copy of it would take its answers away.
Checker& OwnChecker() {
    static std::map<pid_t, Checker> checkers;
    return checkers[getpid()];
}

}  // namespace

std::optional<CommandResult> AskStructuralChecker(const std::filesystem::path& database,
                                                  Strictness strictness) {
    const auto shared = SharedFolder();
    if (!shared || !std::filesystem::exists(*shared / "mdb" / "mdbcheck")) return std::nullopt;
    // It looks at nothing but the file's bytes. Tests that stop a writer at one moment after the
    // other find the same few contents again and again.
    static std::map<std::pair<Strictness, std::string>, CommandResult> verdicts;
    constexpr std::size_t MostRemembered = 100;
    const auto question = std::pair(strictness, ContentOf(database));
    if (const auto known = verdicts.find(question); known != verdicts.end()) return known->second;
    const CommandResult verdict = OwnChecker().Ask(database, strictness);
    if (verdicts.size() < MostRemembered) verdicts.emplace(question, verdict);
    return verdict;
}

std::string StructuralFaults(const std::filesystem::path& database, Strictness strictness) {
    // A build with sanitizers looks at memory. What is written there is what every other build
    // writes and has checked.
    if (QUILLON_SANITIZED) return "";
    const auto verdict = AskStructuralChecker(database, strictness);
    return !verdict || verdict->status == 0 ? "" : verdict->output;
}

}  // namespace outside
