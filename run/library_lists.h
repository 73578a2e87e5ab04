#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

class Files;

/// The lines of the `.txt` files in a library root, which name further library folders; blank lines
/// are left out, blanks around a line dropped. Failure when one of the files cannot be read: what
/// it names is then not known.
std::vector<std::string> ListedLibraryFolders(Files& files, std::string_view root);

}  // namespace quillon
