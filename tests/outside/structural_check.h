#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "tests/outside/command.h"

namespace outside {

/// Strict: things that the database's own engine leaves behind count as faults as well.
enum class Strictness { Lenient, Strict };

/// What the independent structural checker says of a closed database file; nothing where the
/// checker is not at hand.
std::optional<CommandResult> AskStructuralChecker(const std::filesystem::path& database,
                                                  Strictness strictness = Strictness::Lenient);

/// Its faults; empty when it finds none or is not at hand, and under the sanitizers, which leave
/// that to the other builds.
std::string StructuralFaults(const std::filesystem::path& database,
                             Strictness strictness = Strictness::Lenient);

}  // namespace outside
