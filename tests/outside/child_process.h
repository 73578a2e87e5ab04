#pragma once

#include <functional>
#include <string>
#include <sys/types.h>

namespace outside {

/// A copy of this process that does some work and ends with the status that the work gives; with 2,
/// and the reason on standard error, where it throws.
class ChildProcess {
  public:
    /// Throws std::system_error when it cannot be started.
    explicit ChildProcess(const std::function<int()>& work);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();  ///< waits for its end

    void Kill() const;  ///< by SIGKILL

    /// Waits for its end; the status is that of waitpid().
    int Wait();

  private:
    pid_t process_;
    int status_ = 0;
    bool ended_ = false;
};

/// Ends this process at once, as a kill from outside does.
[[noreturn]] void KillThisProcess();

/// What an action returns when a process of its own does it, which `prepare` changes beforehand.
std::string InChildProcess(const std::function<void()>& prepare,
                           const std::function<std::string()>& action);

/// The action's answer without the super-user's rights.
std::string AsOrdinaryUser(const std::function<std::string()>& action);

/// For good, in a child process; the program goes on as nobody where it was root.
void GiveUpRights();

/// The action's answer where no file may grow beyond some bytes, as on a full disk.
std::string WithFilesUpTo(std::size_t bytes, const std::function<std::string()>& action);

/// As if somebody had made room on that disk.
void LetFilesGrow();

}  // namespace outside
