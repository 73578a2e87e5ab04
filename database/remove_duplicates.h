#pragma once

#include <string_view>

namespace quillon {

/// The query for identifiers that several albums carry, in its field "CDJID Field".
constexpr std::string_view DuplicatedIdentifiers =
    "SELECT First(Albums.CDJID) AS [CDJID Field], Count(Albums.CDJID) AS NumberOfDups "
    "FROM Albums GROUP BY Albums.CDJID HAVING (((Count(Albums.CDJID))>1))";

class Run;

/// Marks every owned album and track as not yet found in the folders, and removes what cannot be
/// reconciled: all rows of an identifier that several albums carry, and owned tracks without a
/// sound file. The mark snapshot is taken first; without it nothing is marked. Each statement's
/// failure is logged and the next one runs.
void RemoveDuplicates(Run& run);

}  // namespace quillon
