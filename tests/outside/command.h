#pragma once

#include <string>
#include <string_view>

namespace outside {

struct CommandResult {
    std::string output;  ///< standard output
    int status = 0;      ///< exit status
};

/// Runs a shell command to its end. Throws std::runtime_error if no shell can be started.
CommandResult RunCommand(const std::string& command);

/// A word that the shell takes as it is; the text holds no apostrophe.
std::string ShellQuoted(std::string_view text);

}  // namespace outside
