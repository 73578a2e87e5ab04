#include "platform/portable/local_file.h"

#include <fcntl.h>
#include <unistd.h>

namespace quillon {

void SyncFolder(const std::string& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    fsync(descriptor);
    close(descriptor);
}

}  // namespace quillon
