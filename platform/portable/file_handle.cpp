#include "platform/portable/file_handle.h"

#include <cerrno>
#include <memory>
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

void FileHandle::WriteFrom(const FileHandle& source, std::uint64_t from) const {
    constexpr std::size_t AtATime = std::size_t{1} << 30U;
    auto position = static_cast<off_t>(from);
    // The kernel copies, where it can for these two files, without a way through this process.
    while (copy_file_range(source.descriptor_, &position, descriptor_, nullptr, AtATime, 0) > 0) {
    }
    constexpr std::size_t BufferSize = 65536;
    const auto buffer = std::make_unique_for_overwrite<std::uint8_t[]>(BufferSize);
    while (const std::size_t length = source.ReadAt(static_cast<std::uint64_t>(position),
                                                    std::span(buffer.get(), BufferSize))) {
        Write({reinterpret_cast<const char*>(buffer.get()), length});
        position += static_cast<off_t>(length);
    }
}

void FileHandle::SetModified(const std::timespec& modified) const {
    const std::array<std::timespec, 2> times{std::timespec{0, UTIME_OMIT}, modified};
    if (futimens(descriptor_, times.data()) != 0) throw SystemFailure(errno, shownPath_);
}

struct stat FileHandle::Facts() const {
    struct stat facts{};
    if (fstat(descriptor_, &facts) != 0) throw SystemFailure(errno, shownPath_);
    return facts;
}

}  // namespace quillon
