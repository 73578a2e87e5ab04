// Windows has no shell and no programs that tests could ask.
#include <stdexcept>

#include "tests/outside/structural_check.h"

namespace outside {

CommandResult RunCommand(const std::string& command) {
    throw std::runtime_error("no shell for: " + command);
}

std::string ShellQuoted(std::string_view text) {
    return "'" + std::string(text) + "'";
}

std::optional<CommandResult> AskStructuralChecker(const std::filesystem::path& /*database*/,
                                                  Strictness /*strictness*/) {
    return std::nullopt;
}

std::string StructuralFaults(const std::filesystem::path& /*database*/, Strictness /*strictness*/) {
    return "";
}

}  // namespace outside
