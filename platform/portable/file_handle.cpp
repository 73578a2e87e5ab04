#include "platform/portable/file_handle.h"

#include <cerrno>
#include <unistd.h>

#include "platform/portable/system_failure.h"

namespace quillon {

FileHandle::~FileHandle() {
    if (descriptor_ >= 0) close(descriptor_);
}

std::size_t FileHandle::ReadAt(std::uint64_t position, std::span<std::uint8_t> buffer) const {
    std::size_t done = 0;
    while (done < buffer.size()) {
        const ssize_t count = pread(descriptor_, buffer.data() + done, buffer.size() - done,
                                    static_cast<off_t>(position + done));
        if (count == 0) break;
        if (count > 0) {
            done += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            throw SystemFailure(errno, shownPath_);
        }
    }
    return done;
}

void FileHandle::Write(std::string_view bytes) const {
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor_, bytes.data(), bytes.size());
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            throw SystemFailure(errno, shownPath_);
        }
    }
}

struct stat FileHandle::Facts() const {
    struct stat facts{};
    if (fstat(descriptor_, &facts) != 0) throw SystemFailure(errno, shownPath_);
    return facts;
}

}  // namespace quillon
