#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// A track's title by its file's full path: in the tree layout what follows the first " - ", in the
/// flat layout what follows the last "_", else the file's name; always without ".mp3", which is
/// looked for in lower case only.
///
/// The tree's search runs over the whole path, so that a " - " in a folder's name makes the title
/// begin there and hold backslashes. Titles of existing databases were made like that.
std::string GetTrackName(std::string_view path, bool flatStructure);

}  // namespace quillon
