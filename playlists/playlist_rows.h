#pragma once

#include <string>

#include "playlists/generated_lists.h"

namespace quillon {

class Run;

/// Sees to it that the generated playlist of this name (without extension) has a row in the table
/// `Playlists` with the family's mark, by which a later run finds it. One that has it already is
/// not written. Throws Failure.
void RecordPlaylist(Run& run, const std::string& name, GeneratedBy family);

}  // namespace quillon
