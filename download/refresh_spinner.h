#pragma once

namespace quillon {

class Run;

/// Removes rows of the download table whose song is not in the library any more, and merges rows of
/// one song, whose play counts are added up. Expects the library's files to be named
/// ...\artist\album\artist - song.mp3.
///
/// No mode of the driver runs this: where files are named otherwise it would empty the download
/// table. Its indicator in the window lights up alone.
///
/// A failure is logged; the row that it concerned stays.
void RefreshSpinner(Run& run);

}  // namespace quillon
