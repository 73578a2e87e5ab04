#include "app/checks/leftovers_check.h"

#include <array>
#include <fmt/format.h>
#include <string_view>
#include <system_error>

namespace quillon {
namespace {

struct Leftover {
    std::string_view ending;
    std::string_view effect;
};

constexpr std::array Leftovers{
    Leftover{".playlists",
             "from it the next reconciliation learns which songs the playlists named"},
};

}  // namespace

void CheckLeftovers(const std::filesystem::path& database, bool reconciles, Findings& findings) {
    for (const Leftover& leftover : Leftovers) {
        std::filesystem::path path = database;
        path += leftover.ending;
        std::error_code ignored;
        const std::filesystem::file_status status = std::filesystem::symlink_status(path, ignored);
        if (!std::filesystem::exists(status)) continue;
        if (!std::filesystem::is_regular_file(status)) {
            findings.Add(reconciles,
                         fmt::format("{} is not a regular file. A reconciliation keeps a file of "
                                     "its own there and follows no link, so none starts. Remove it",
                                     path.string()));
            continue;
        }
        findings.Caution(
            fmt::format("A run was interrupted and has left {}: {}. Leave it beside the database",
                        path.string(), leftover.effect));
    }
}

}  // namespace quillon
