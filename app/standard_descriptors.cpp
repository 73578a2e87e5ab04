#include "app/standard_descriptors.h"

#include <fcntl.h>
#include <unistd.h>

namespace quillon {

void FillStandardDescriptors() {
    // Descriptors are given out from the lowest free number on.
    int descriptor = open("/dev/null", O_RDWR);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO)
        descriptor = dup(descriptor);
    if (descriptor > STDERR_FILENO) close(descriptor);
}

}  // namespace quillon
