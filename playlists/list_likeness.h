#pragma once

#include <string_view>

namespace quillon {

class Run;
struct FileEntry;

/// Whether a file that does not have a playlist's name is one all the same: it begins with the
/// header, or every line behind the first is an entry and the first of these names an album of the
/// database. Settings, databases, music, the lists of other players and the
/// companions that some systems put beside files never are. Throws Failure.
bool ReadsAsPlaylist(Run& run, const FileEntry& file);

/// Whether a text is certainly a playlist: it begins with the header, or a line behind the first is
/// an entry and nothing else. Other programs give files of their own the same name.
bool IsCertainlyPlaylist(std::string_view text);

}  // namespace quillon
