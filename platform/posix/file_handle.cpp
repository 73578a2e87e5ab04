#include "platform/portable/file_handle.h"

#include <array>
#include <cerrno>
#include <ctime>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/portable/system_failure.h"
#include "platform/posix/posix_facts.h"

namespace quillon {

void FileHandle::Close() noexcept {
    if (descriptor_ >= 0) close(descriptor_);
    descriptor_ = -1;
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

void FileHandle::WriteFrom(const FileHandle& source, std::uint64_t from,
                           const std::function<void(std::uint64_t bytes)>& watch) const {
    const auto tell = [&watch](auto count) {
        if (watch) watch(static_cast<std::uint64_t>(count));
    };
    const std::size_t atATime = std::size_t{1} << (watch ? 24U : 30U);
    auto position = static_cast<off_t>(from);
    // The kernel copies, where it can for these two files, without a way through this process.
    ssize_t count = 0;
    while ((count = copy_file_range(source.descriptor_, &position, descriptor_, nullptr, atATime,
                                    0)) > 0)
        tell(count);
    constexpr std::size_t BufferSize = 65536;
    const auto buffer = std::make_unique_for_overwrite<std::uint8_t[]>(BufferSize);
    while (const std::size_t length = source.ReadAt(static_cast<std::uint64_t>(position),
                                                    std::span(buffer.get(), BufferSize))) {
        Write({reinterpret_cast<const char*>(buffer.get()), length});
        position += static_cast<off_t>(length);
        tell(length);
    }
}

void FileHandle::SetModified(const FileTime& modified) const {
    if (const int error = TrySetModified(modified); error != 0)
        throw SystemFailure(error, shownPath_);
}

FileFacts FileHandle::Facts() const {
    struct stat facts{};
    if (fstat(descriptor_, &facts) != 0) throw SystemFailure(errno, shownPath_);
    return FactsFrom(facts);
}

void FileHandle::TakeRightsOf(const FileFacts& other) const {
    // Only the super-user may give a file away; for everyone else it is theirs already.
    if (fchown(descriptor_, other.owner, other.group) != 0) errno = 0;
    fchmod(descriptor_, other.rights);
}

int FileHandle::WriteAt(std::uint64_t position, std::span<const std::uint8_t> bytes) const {
    while (!bytes.empty()) {
        const ssize_t count =
            pwrite(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(position));
        if (count < 0 && errno != EINTR) return errno;
        if (count == 0) return EIO;
        if (count < 0) continue;
        position += static_cast<std::uint64_t>(count);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return 0;
}

int FileHandle::SetSize(std::uint64_t size) const {
    return ftruncate(descriptor_, static_cast<off_t>(size)) == 0 ? 0 : errno;
}

int FileHandle::TrySetModified(const FileTime& modified) const {
    const std::array<std::timespec, 2> times{std::timespec{0, UTIME_OMIT},
                                             std::timespec{modified.seconds, modified.nanoseconds}};
    return futimens(descriptor_, times.data()) == 0 ? 0 : errno;
}

int FileHandle::Flush() const {
    return fsync(descriptor_) == 0 ? 0 : errno;
}

int FileHandle::FlushAll() const {
    return syncfs(descriptor_) == 0 ? 0 : errno;
}

}  // namespace quillon
