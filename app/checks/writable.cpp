#include "app/checks/writable.h"

#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace quillon {

bool IsWritable(const std::filesystem::path& path) {
    std::error_code ignored;
    const bool isFolder = std::filesystem::is_directory(path, ignored);
    return faccessat(AT_FDCWD, path.c_str(), isFolder ? W_OK | X_OK : W_OK, AT_EACCESS) == 0;
}

}  // namespace quillon
