#pragma once

namespace quillon {

class Run;

/// Fills the run's genre dictionary from the download table; of several rows of one song the first
/// one counts. A row without a genre gets the one that its file name tells, "other" when it tells
/// none, and keeps it. Failures are logged with "PopulateGenre:".
void PopulateGenre(Run& run);

}  // namespace quillon
