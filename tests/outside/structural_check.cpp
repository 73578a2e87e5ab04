#include "tests/outside/structural_check.h"

#include <fstream>
#include <iterator>
#include <map>
#include <utility>

#include "tests/outside/shared_folder.h"

namespace outside {
namespace {

std::string Content(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

CommandResult Verdict(const std::filesystem::path& checker, const std::filesystem::path& database,
                      Strictness strictness) {
    const char* const option = strictness == Strictness::Strict ? " --strict " : " ";
    return RunCommand(ShellQuoted(QUILLON_PYTHON) + " -I -S " + ShellQuoted(checker.string()) +
                      option + ShellQuoted(database.string()) + " 2>&1");
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
    const auto question = std::pair(strictness, Content(database));
    if (const auto known = verdicts.find(question); known != verdicts.end()) return known->second;
    const CommandResult verdict = Verdict(*shared / "mdb" / "mdbcheck", database, strictness);
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
