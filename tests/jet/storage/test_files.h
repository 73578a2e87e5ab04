#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/outside/temporary_folder.h"

namespace jet::storage::test {

using outside::TemporaryFolder;

/// All test databases with a description of their rows beside them.
std::vector<std::filesystem::path> DescribedDatabases();

/// What a shell command prints to its standard output.
std::string OutputOf(const std::string& command);

/// The independent checker's faults; empty when it finds none or is not at hand. Strict: things
/// that the database's own engine leaves behind count as well.
std::string FaultsOf(const std::filesystem::path& database, bool strict = false);

void WriteFile(const std::filesystem::path& path, const std::string& content);

}  // namespace jet::storage::test
