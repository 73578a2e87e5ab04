#include "app/checks/identifiers_check.h"

#include <cstddef>
#include <fmt/format.h>
#include <string>

#include "database/remove_duplicates.h"
#include "database/schema.h"
#include "jet/database.h"

namespace quillon {
namespace {

/// There are ten thousand; the last hundred deserve a warning.
constexpr std::size_t ManyIdentifiers = 9900;

std::size_t CountRows(jet::Database& database, const std::string& query) {
    std::size_t count = 0;
    for (const auto rows = database.Query(query); !rows->IsEof(); rows->MoveNext())
        ++count;
    return count;
}

}  // namespace

void CheckIdentifiers(jet::Database& database, Findings& findings) {
    const std::size_t shared = CountRows(database, std::string(DuplicatedIdentifiers));
    if (shared > 0) {
        findings.Caution(fmt::format(
            "{} carried by more than one album. A reconciliation removes all of those albums, "
            "discs of the jukebox too, with their tracks, play counts and ratings, and adds the "
            "folders that exist as new ones. To keep them, give each an identifier of its own in "
            "Albums and Tracks; this query names them: {}",
            shared == 1 ? "An identifier is" : fmt::format("{} identifiers are", shared),
            DuplicatedIdentifiers));
    }
    const std::size_t inUse =
        CountRows(database, fmt::format("SELECT DISTINCT CDJID FROM Albums WHERE Left(CDJID, 12) = "
                                        "'{}' AND Len(CDJID) = 16",
                                        CdjidPrefix));
    if (inUse >= ManyIdentifiers) {
        findings.Caution(fmt::format(
            "{} of the 10,000 identifiers for albums are in use. When all are in use, a run leaves "
            "new albums out. Deleting albums that are gone for good frees theirs",
            inUse));
    }
}

}  // namespace quillon
