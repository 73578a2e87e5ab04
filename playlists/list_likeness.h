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

/// Whether what the file of a playlist holds may be one. Readers take any text for that, whatever
/// its first line says. What is no text, and has neither the header nor an entry, is a file of
/// another program, which gives files of its own the same name.
bool MayBePlaylist(std::string_view text);

}  // namespace quillon
