#pragma once

namespace quillon {

class Run;

/// Converts every playlist in the folder `PlayListPath` into one for ordinary media players in the
/// folder `PlayListPath2`. One without entries makes no file; another list of the name is replaced.
/// Songs whose paths the ANSI code page lacks are left out, with a line in the log; a file in UTF-8
/// beside it, `.m3u8`, then has all songs. Abort stops before the next file. A failure is logged
/// and affects only the entry it is about, or the file that cannot be read or written.
void aPlaToM3u_Click(Run& run);

/// The opposite direction is a mode without work, on purpose: playlists for other players are made
/// from the jukebox's and never read back.
void M3uToPla(Run& run);

}  // namespace quillon
