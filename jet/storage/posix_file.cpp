#include <array>
#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "jet/error.h"
#include "jet/storage/posix_call.h"
#include "jet/storage/system_file.h"

namespace jet::storage {

namespace {

[[noreturn]] void FailToExchange(const std::filesystem::path& file, const std::error_code& reason) {
    throw Error(ErrorKind::Io, file.string() + " cannot be replaced: " + reason.message());
}

/// Whoever may read and write the file may read and write the copy.
void CopyAccess(const std::filesystem::path& from, const std::filesystem::path& to) {
    struct stat facts{};
    if (stat(from.c_str(), &facts) != 0 || chmod(to.c_str(), facts.st_mode & 07777) != 0)
        FailToExchange(from, std::error_code(errno, std::generic_category()));
    // Only root may give files away; otherwise the copy belongs to whoever runs this.
    [[maybe_unused]] const int given = chown(to.c_str(), facts.st_uid, facts.st_gid);
}

std::string_view KindOf(mode_t mode) {
    switch (mode & S_IFMT) {
        case S_IFREG:
            return "";
        case S_IFDIR:
            return "a folder";
        case S_IFLNK:
            return "a symbolic link";
        case S_IFIFO:
            return "a FIFO";
        case S_IFSOCK:
            return "a socket";
        default:
            return "a device";
    }
}

std::int64_t Nanoseconds(const timespec& time) {
    constexpr std::int64_t PerSecond = 1000000000;
    return time.tv_sec * PerSecond + time.tv_nsec;
}

FileFacts FactsIn(const struct stat& status) {
    return {.device = status.st_dev,
            .number = status.st_ino,
            .names = status.st_nlink,
            .size = static_cast<std::uint64_t>(status.st_size),
            .written = Nanoseconds(status.st_mtim),
            .changed = Nanoseconds(status.st_ctim),
            .otherKind = KindOf(status.st_mode)};
}

std::optional<FileFacts> Look(const std::filesystem::path& path, int flags) {
    struct stat status{};
    if (fstatat(AT_FDCWD, path.c_str(), &status, flags) == 0) return FactsIn(status);
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    ThrowSystemError("look up", path, errno);
}

struct flock WriteLock(ByteRange range) {
    struct flock lock{};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = range.start;
    lock.l_len = range.length;
    return lock;
}

LockResult FailedLock(const std::filesystem::path& path, int errorNumber) {
    switch (errorNumber) {
        case EAGAIN:
        case EACCES:
            return LockResult::Held;
        case EINVAL:
        case ENOLCK:
        case ENOSYS:
        case EOPNOTSUPP:
            return LockResult::Unsupported;
        default:
            ThrowSystemError("lock", path, errorNumber);
    }
}

int FlagsOf(Opening opening) {
    switch (opening) {
        case Opening::Read:
            return O_RDONLY;
        case Opening::ReadWrite:
            return O_RDWR;
        case Opening::New:
            return O_RDWR | O_CREAT | O_EXCL;
        case Opening::ReadWriteOrNew:
            return O_RDWR | O_CREAT;
    }
    return O_RDONLY;
}

}  // namespace

Descriptor::~Descriptor() {
    if (IsOpen()) close(static_cast<int>(number_));
}

void ThrowSystemError(std::string_view verb, const std::filesystem::path& path, int errorNumber) {
    auto kind = ErrorKind::Io;
    if (errorNumber == ENOENT || errorNumber == ENOTDIR) kind = ErrorKind::NotFound;
    if (errorNumber == EACCES || errorNumber == EPERM || errorNumber == EROFS) {
        kind = ErrorKind::ReadOnly;
    }
    throw Error(kind, "Cannot " + std::string(verb) + " " + path.string() + ": " +
                          std::generic_category().message(errorNumber) + ".");
}

FileFacts FactsOf(const Descriptor& file, const std::filesystem::path& path) {
    struct stat status{};
    if (fstat(NumberOf(file), &status) != 0) ThrowSystemError("look up", path, errno);
    return FactsIn(status);
}

std::optional<FileFacts> FactsOfName(const std::filesystem::path& path) {
    return Look(path, AT_SYMLINK_NOFOLLOW);
}

std::optional<FileFacts> FactsOfTarget(const std::filesystem::path& path) {
    return Look(path, 0);
}

Descriptor OpenName(const std::filesystem::path& path, Opening opening, std::string_view verb) {
    constexpr int Always = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    constexpr mode_t EveryoneByUmask = 0666;
    const int flags = FlagsOf(opening) | Always;
    Descriptor file(Uninterrupted([&] { return open(path.c_str(), flags, EveryoneByUmask); }));
    if (!file.IsOpen()) ThrowSystemError(verb, path, errno);
    return file;
}

std::size_t ReadFrom(const Descriptor& file, std::uint64_t offset, std::span<std::uint8_t> bytes,
                     const std::filesystem::path& path) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const auto rest = bytes.subspan(done);
        const auto count = Uninterrupted([&] {
            return pread(NumberOf(file), rest.data(), rest.size(),
                         static_cast<off_t>(offset + done));
        });
        if (count < 0) ThrowSystemError("read", path, errno);
        if (count == 0) break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

void WriteTo(const Descriptor& file, std::uint64_t offset, std::span<const std::uint8_t> bytes,
             const std::filesystem::path& path) {
    while (!bytes.empty()) {
        const auto count = Uninterrupted([&] {
            return pwrite(NumberOf(file), bytes.data(), bytes.size(), static_cast<off_t>(offset));
        });
        if (count < 0) ThrowSystemError("write", path, errno);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
        offset += static_cast<std::uint64_t>(count);
    }
}

void Empty(const Descriptor& file, const std::filesystem::path& path) {
    if (ftruncate(NumberOf(file), 0) != 0) ThrowSystemError("write", path, errno);
}

void CloseAndRemove(Descriptor file, const std::filesystem::path& path) {
    // The name goes first: whoever opens it afterwards makes a new file.
    if (file.IsOpen()) unlink(path.c_str());
}

void Exchange(const std::filesystem::path& file, const std::filesystem::path& copy,
              const std::filesystem::path& kept) {
    CopyAccess(file, copy);
    std::error_code failed;
    // The old file gets a second name first. Some file systems have no second names.
    std::filesystem::create_hard_link(file, kept, failed);
    if (failed) {
        std::filesystem::rename(file, kept, failed);
        if (failed) FailToExchange(file, failed);
    }
    std::filesystem::rename(copy, file, failed);
    if (!failed) return;
    std::error_code ignored;
    std::filesystem::rename(kept, file, ignored);
    FailToExchange(file, failed);
}

std::string MachineName() {
    std::array<char, 256> name{};
    if (gethostname(name.data(), name.size() - 1) != 0) return "localhost";
    return name.data();
}

std::tm LocalTime(std::time_t moment) {
    std::tm local{};
    localtime_r(&moment, &local);
    return local;
}

LockResult TakeLock(const Descriptor& file, ByteRange range, const std::filesystem::path& path) {
    struct flock lock = WriteLock(range);
    const int result = Uninterrupted([&] { return fcntl(NumberOf(file), F_OFD_SETLK, &lock); });
    return result == 0 ? LockResult::Taken : FailedLock(path, errno);
}

LockResult ProbeLock(const Descriptor& file, ByteRange range, const std::filesystem::path& path) {
    struct flock lock = WriteLock(range);
    const int result = Uninterrupted([&] { return fcntl(NumberOf(file), F_OFD_GETLK, &lock); });
    if (result != 0) return FailedLock(path, errno);
    return lock.l_type == F_UNLCK ? LockResult::Taken : LockResult::Held;
}

}  // namespace jet::storage
