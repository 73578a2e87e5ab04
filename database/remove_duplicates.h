#pragma once

#include <string_view>

namespace quillon {

/// The query for identifiers that several albums carry, in its field "CDJID Field".
constexpr std::string_view DuplicatedIdentifiers =
    "SELECT First(Albums.CDJID) AS [CDJID Field], Count(Albums.CDJID) AS NumberOfDups "
    "FROM Albums GROUP BY Albums.CDJID HAVING (((Count(Albums.CDJID))>1))";

class Run;

/// Removes what cannot be reconciled: all rows of an identifier that several albums carry, and
/// owned tracks without a sound file. Each statement's failure is logged and the next one runs.
/// (Marking all rows as not yet found is left to the folder walk, which does so in memory.)
void RemoveDuplicates(Run& run);

}  // namespace quillon
