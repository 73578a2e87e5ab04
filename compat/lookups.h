#pragma once

#include <string>
#include <string_view>

namespace quillon {

class Run;

/// Kept because it tells what the download table says of a single song; a run asks its dictionary
/// of genres, which is made once for all songs.
///
/// A song's genre by the download table; "" without a row. Failures are logged with "Get ID3 Genre
/// Error:".
std::string GetID3Genre(Run& run, std::string_view artist, std::string_view album,
                        std::string_view song);

/// Kept because it is how the playlist working set is looked at in a diagnosis; no phase calls it.
///
/// Writes every entry of the working set into the host's log: "ORs ", then the caption and the
/// fields in their order, with commas between.
void showORs(Run& run, std::string_view caption);

}  // namespace quillon
