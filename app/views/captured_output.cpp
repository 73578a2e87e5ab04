#include "app/views/captured_output.h"

#include <sys/mman.h>
#include <unistd.h>

namespace quillon {

CapturedOutput::CapturedOutput() {
    const int descriptor = memfd_create("screen", MFD_CLOEXEC);
    if (descriptor < 0) return;
    stream_.reset(fdopen(descriptor, "w"));
    if (!stream_) close(descriptor);
}

std::string CapturedOutput::Take() {
    const int descriptor = fileno(stream_.get());
    std::fflush(stream_.get());
    const off_t size = lseek(descriptor, 0, SEEK_CUR);
    std::string text(size > 0 ? static_cast<std::size_t>(size) : 0, '\0');
    const ssize_t count = pread(descriptor, text.data(), text.size(), 0);
    text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    // The file need not shrink: what lies behind the new end is overwritten or never read.
    lseek(descriptor, 0, SEEK_SET);
    return text;
}

}  // namespace quillon
