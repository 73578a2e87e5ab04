#include "tests/outside/structural_check.h"

#include "tests/outside/shared_folder.h"

namespace outside {

std::optional<CommandResult> AskStructuralChecker(const std::filesystem::path& database,
                                                  Strictness strictness) {
    const auto shared = SharedFolder();
    if (!shared || !std::filesystem::exists(*shared / "mdb" / "mdbcheck")) return std::nullopt;
    const char* const option = strictness == Strictness::Strict ? " --strict " : " ";
    return RunCommand(ShellQuoted((*shared / "mdb" / "mdbcheck").string()) + option +
                      ShellQuoted(database.string()) + " 2>&1");
}

std::string StructuralFaults(const std::filesystem::path& database, Strictness strictness) {
    const auto verdict = AskStructuralChecker(database, strictness);
    return !verdict || verdict->status == 0 ? "" : verdict->output;
}

}  // namespace outside
