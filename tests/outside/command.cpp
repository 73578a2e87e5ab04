#include "tests/outside/command.h"

#include <array>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <sys/wait.h>

namespace outside {

CommandResult RunCommand(const std::string& command) {
    std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    if (!pipe) throw std::runtime_error("cannot run: " + command);
    CommandResult result;
    std::array<char, 65536> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe.get()))
        result.output.append(buffer.data(), count);
    const int ended = pclose(pipe.release());
    result.status = WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
    return result;
}

std::string ShellQuoted(std::string_view text) {
    return "'" + std::string(text) + "'";
}

}  // namespace outside
