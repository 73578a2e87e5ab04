#include "tests/outside/shared_folder.h"

#include <algorithm>
#include <cstdlib>

namespace outside {

std::optional<std::filesystem::path> SharedFolder() {
    const char* const given = std::getenv("QUILLON_SHARED");
    std::filesystem::path folder = given != nullptr ? given : QUILLON_SHARED_DEFAULT;
    if (!std::filesystem::is_directory(folder / "fixtures")) return std::nullopt;
    return folder;
}

std::vector<std::filesystem::path> SampleDatabases() {
    std::vector<std::filesystem::path> databases;
    const auto shared = SharedFolder();
    if (!shared) return databases;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(*shared / "fixtures")) {
        if (entry.path().extension() == ".mdb") databases.push_back(entry.path());
    }
    std::sort(databases.begin(), databases.end());
    return databases;
}

}  // namespace outside
