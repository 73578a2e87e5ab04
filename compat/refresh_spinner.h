#pragma once

namespace quillon {

class Run;

/// Kept because phase 6 of the window is named after it, and its statements are what other programs
/// know of it; no mode runs it, since where files are named otherwise it would empty the download
/// table.
///
/// Removes rows of the download table whose song is not in the library any more, and merges rows of
/// one song, whose play counts are added up. Expects the library's files to be named
/// ...\artist\album\artist - song.mp3.
///
/// A failure is logged; the row that it concerned stays.
void RefreshSpinner(Run& run);

}  // namespace quillon
