#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// The genre in the base name of a download link (".../000-Rock-000.rm"): the text between the
/// first "-" and the next one, "" when there are no two.
std::string GenreInFileName(std::string_view fileName);

}  // namespace quillon
