#pragma once

#include <cstddef>
#include <string>
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
    bool terminal = false;                 ///< a terminal of 80x24 instead of the null device
    std::vector<std::string> environment;  ///< "NAME=value", beside what this process has
};

/// Runs a program to its end; what it prints is dropped. Throws when it cannot be started.
Usage RunProcess(const std::vector<std::string>& command, const Surroundings& surroundings = {});

/// The same for a program that is to succeed; throws when it ends with another status than 0.
Usage RunToSuccess(const std::vector<std::string>& command, const Surroundings& surroundings = {});

}  // namespace quillon::bench
