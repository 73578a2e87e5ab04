#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The jukebox's own playlist format: a header line, then a line "CDJID INDEX" for each entry. The
/// index counts the album's tracks from 0, one less than `Tracks.Track`; -1 is the whole album.
namespace quillon {

constexpr std::string_view PlaHeader = "CDJ Playlist V1.1";
constexpr std::string_view PlaExtension = ".pla";
constexpr std::string_view WholeAlbumIndex = "-1";
/// Stands for all tracks where a track's number could be.
constexpr std::int32_t WholeAlbum = -1;

/// An entry's fields as they stand in the line, views into it.
struct PlaFields {
    std::string_view cdjid;
    std::string_view index;
};

/// The first two of at least two fields, of which either may be empty: blanks separate, so two in a
/// row have an empty field between them. Nothing for a line without a blank. What stands behind
/// does not count here, though it does for the conversion.
std::optional<PlaFields> FirstTwoFields(std::string_view line);

/// The fields of a line that has exactly two, neither empty.
std::optional<PlaFields> ExactlyTwoFields(std::string_view line);

/// The whole number that an index stands for; nothing when it is no number, no whole one or beyond
/// 32 bits, in which cases it is no track's.
std::optional<std::int32_t> WholeIndex(std::string_view index);

/// The line for a track by its number in the database, which counts from 1.
std::string PlaLine(std::string_view cdjid, std::int64_t track);

/// The line for a whole album.
std::string PlaAlbumLine(std::string_view cdjid);

}  // namespace quillon
