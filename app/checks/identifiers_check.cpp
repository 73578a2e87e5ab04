#include "app/checks/identifiers_check.h"

#include <cstddef>
#include <fmt/format.h>
#include <string>

#include "database/remove_duplicates.h"
#include "database/schema.h"
#include "jet/database.h"

namespace quillon {
namespace {

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
    if (CountRows(database, fmt::format("SELECT CDJID FROM Albums WHERE CDJID = '{}9999'",
                                        CdjidPrefix)) > 0) {
        findings.Caution(fmt::format(
            "The last identifier for albums, {0}9999, is in use. All further ones get {0}0000, and "
            "as soon as two have it each run removes them and adds them anew. Give the albums of "
            "the highest numbers free lower ones, in Albums and Tracks",
            CdjidPrefix));
    }
}

}  // namespace quillon
