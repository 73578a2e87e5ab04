#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace quillon {

class Run;
class Steps;

/// Whether the folder of the setting `PlayListPath` is there. Failure where that is unknown.
bool PlaylistFolderExists(Run& run);

/// Whether two settings or fields name the same folder, by whatever drive or link; false where
/// either is not there. Failure where that is unknown.
bool IsSameFolder(Files& files, std::string_view one, std::string_view other);

/// Whether a file of this name is a playlist by its name alone. The companions that some systems
/// put beside files ("._Mine.pla") are not.
bool HasPlaylistName(std::string_view name);

/// The files in the playlist folder but for the program's own: the database with what lies beside
/// it under its name, settings and log, for people who keep all that in one folder. Failure: what
/// listing says.
std::vector<FileEntry> FilesInPlaylistFolder(Run& run);

/// The playlists of the folder.
struct PlaylistFolder {
    std::vector<FileEntry> lists;
    std::vector<std::string> unread;  ///< names of what is there and cannot be looked at

    bool IsEmpty() const { return lists.empty() && unread.empty(); }
};

/// Whether a run may go on with a folder that holds no playlist: it trips the brake where the
/// database has playlists in that folder. Failure: what asking the database says.
bool MayMissAll(Run& run);

/// Reads the folder; what speaks against it is logged first. A file that has no playlist's name is
/// one when it reads as one. A file that cannot be read for that is logged as step 2. Failure: what
/// listing says.
PlaylistFolder ReadPlaylistFolder(Run& run, Steps& steps);

}  // namespace quillon
