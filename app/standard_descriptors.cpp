#include "app/standard_descriptors.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace quillon {

void PrepareStandardDescriptors() {
    // Descriptors are given out from the lowest free number on.
    int descriptor = open("/dev/null", O_RDWR);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO)
        descriptor = dup(descriptor);
    if (descriptor > STDERR_FILENO) close(descriptor);
    // A file that must not grow any more is a write that fails, which everybody here expects.
    std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace quillon
