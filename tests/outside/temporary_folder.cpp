#include "tests/outside/temporary_folder.h"

#include <cerrno>
#include <stdlib.h>  // mkdtemp is POSIX, not in <cstdlib>
#include <string>
#include <system_error>

namespace outside {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    std::string pattern = fs::temp_directory_path() / "quillon-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr)
        throw std::system_error(errno, std::generic_category(), pattern);
    path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    for (auto entry = fs::recursive_directory_iterator(path_, ignored);
         entry != fs::recursive_directory_iterator(); entry.increment(ignored)) {
        if (entry->is_directory(ignored) && !entry->is_symlink(ignored))
            fs::permissions(entry->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
    }
    fs::remove_all(path_, ignored);
}

}  // namespace outside
