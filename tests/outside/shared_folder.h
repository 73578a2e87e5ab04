#pragma once

#include <filesystem>
#include <optional>
#include <vector>

namespace outside {

/// The folder of facts, sample databases and the structural checker that lies beside the project
/// ($QUILLON_SHARED names another place); none on a machine that has only the project.
std::optional<std::filesystem::path> SharedFolder();

/// All sample databases in it, by path; empty without that folder.
std::vector<std::filesystem::path> SampleDatabases();

}  // namespace outside
