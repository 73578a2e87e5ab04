#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "run/playlist_entries.h"

/// Playlists as they stand in their files: whole, in bytes of the ANSI code page. A list that is
/// not rewritten keeps every byte, and one that is keeps those of all lines that stay.
namespace quillon {

class Files;

/// Lines end in CR LF.
constexpr std::string_view PlaylistLineEnd = "\r\n";

/// A playlist's bytes. Failure: what reading says; Overflow for a file so large that it is none.
std::string ReadPlaylist(Files& files, std::string_view path);

PlaylistContent ContentOf(std::string_view playlist);

/// Whether the file has this content. False when there is no such file; Failure when it cannot be
/// read.
bool HasContent(Files& files, std::string_view path, const PlaylistContent& content);

/// The lines without their ends, which may be LF alone; views into the playlist.
std::vector<std::string_view> LinesOf(std::string_view playlist);

}  // namespace quillon
