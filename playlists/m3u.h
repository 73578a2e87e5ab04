#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The extended playlist format of ordinary media players: a header line, then two lines a song.
namespace quillon {

class Run;

constexpr std::string_view M3uHeader = "#EXTM3U";

/// A song's two lines.
struct M3uSong {
    std::string information;  ///< "#EXTINF:..."
    std::string soundFile;
};

/// A song's length in seconds as the files state it, from its fields of which either may be Null.
/// Where it is not known, and for anything shorter than a minute, it is six minutes; that is this
/// system's own way and not the -1 of other programs. Failure: Overflow beyond 16 bits.
std::int16_t LengthInSeconds(std::optional<std::int64_t> minutes,
                             std::optional<std::int64_t> seconds);

/// The name of the file that a playlist is converted into: every ".pla" in its name, in whatever
/// letter case, becomes ".m3u".
std::string M3uName(std::string_view name);

/// The name of the same list in UTF-8, beside the other: Rock.m3u8, notes.txt.m3u8.
std::string M3u8Name(std::string_view m3uName);

/// Appends one song; `track` is its number in the database. A song that is not there, or has no
/// sound file, is left out. A failure is logged.
void WriteM3uTrack(Run& run, std::vector<M3uSong>& songs, std::string_view cdjid,
                   std::string_view track);

}  // namespace quillon
