#pragma once

namespace quillon {

class Run;

/// The mode: takes what the tags say into the database, for the differences that a verification has
/// left: a length (field Comment) into the track's minutes and seconds, a genre into the download
/// table, a track number (field Track) into the track. Names are never changed from tags.
///
/// The track is an owned one of these names, else any. Of several that one is meant whose value is
/// the row's DBValue; where that leaves more than one, nothing is changed, and the log says so. A
/// tag without a length or genre is passed over silently. A length that is no number of seconds up
/// to 32767 and a number that is none above 0 are logged and passed over. Other failures are logged
/// with "UpdateDBfromID3", and the next row follows. Stops between rows when Abort is requested.
void UpdateDatabaseFromID3(Run& run);

}  // namespace quillon
