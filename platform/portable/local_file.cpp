#include "platform/portable/local_file.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace quillon {

void SyncFolder(const std::string& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    fsync(descriptor);
    close(descriptor);
}

int RenameToFreeName(const std::string& from, const std::string& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
    // Not every file system knows that operation.
    if (errno != EINVAL && errno != ENOSYS) return errno;
    if (faccessat(AT_FDCWD, to.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0) return EEXIST;
    if (errno != ENOENT) return errno;
    return rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

}  // namespace quillon
