#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace quillon::bench {

/// What a finished process has used.
struct Usage {
    double seconds = 0;          ///< from its start to its end
    double processor = 0;        ///< seconds of processor time, the system's included
    std::size_t peakMemory = 0;  ///< bytes
    int exitStatus = 0;          ///< 128 + signal number if it was ended by a signal
};

/// What a process finds around it.
struct Surroundings {
    bool terminal = false;                   ///< a terminal of 80x24 instead of the null device
    std::vector<std::string> environment{};  ///< "NAME=value", beside what this process has
    /// Is told each line that comes, and the processor time that the process has used by then.
    std::function<void(std::string_view line, double processor)> onLine{};
};

/// Runs a program to its end; what it prints is dropped unless lines are told. Throws when it
/// cannot be started.
Usage RunProcess(const std::vector<std::string>& command, const Surroundings& surroundings = {});

/// The same for a program that is to succeed; throws when it ends with another status than 0.
Usage RunToSuccess(const std::vector<std::string>& command, const Surroundings& surroundings = {});

/// A program that runs beside this one until the end of this scope, then gets SIGTERM. Nothing that
/// it prints is seen.
class Companion {
  public:
    explicit Companion(const std::vector<std::string>& command);
    Companion(const Companion&) = delete;
    Companion& operator=(const Companion&) = delete;
    ~Companion();

    /// Seconds that it has used so far.
    double Processor() const;

  private:
    pid_t process_ = 0;
};

/// Where the shell would find a program; nothing where it is not installed.
std::optional<std::string> InstalledProgram(std::string_view name);

}  // namespace quillon::bench
