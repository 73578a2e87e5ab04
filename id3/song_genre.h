#pragma once

#include <string>
#include <string_view>

namespace quillon {

class Run;

/// The genre in the base name of a download link (".../000-Rock-000.rm"): the text between the
/// first "-" and the next one, "" when there are no two.
std::string GenreInFileName(std::string_view fileName);

/// Fills the run's genre dictionary from the download table; of several rows of one song the first
/// one counts. A row without a genre gets the one that its file name tells, "other" when it tells
/// none, and keeps it. Failures are logged with "PopulateGenre:".
void PopulateGenre(Run& run);

}  // namespace quillon
