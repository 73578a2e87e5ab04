#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "jet/error.h"
#include "jet/storage/posix.h"

namespace jet::storage {

namespace {

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

}  // namespace

Descriptor::~Descriptor() {
    if (IsOpen()) close(number_);
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
    if (fstat(file.Number(), &status) != 0) ThrowSystemError("look up", path, errno);
    return FactsIn(status);
}

std::optional<FileFacts> FactsOfName(const std::filesystem::path& path) {
    return Look(path, AT_SYMLINK_NOFOLLOW);
}

std::optional<FileFacts> FactsOfTarget(const std::filesystem::path& path) {
    return Look(path, 0);
}

void RequirePlain(const FileFacts& facts, const std::filesystem::path& path) {
    if (facts.otherKind.empty()) return;
    throw Error(ErrorKind::Io, path.string() + " is " + std::string(facts.otherKind) +
                                   " and not a plain file; it is neither read nor written.");
}

Descriptor OpenPlainFile(const std::filesystem::path& path, int flags, std::string_view verb) {
    // Looked at before, because opening alone can have an effect on a device, and afterwards,
    // because the name may have got another meaning in between.
    if (const auto facts = FactsOfName(path)) RequirePlain(*facts, path);
    constexpr int Always = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    constexpr mode_t EveryoneByUmask = 0666;
    Descriptor file(
        Uninterrupted([&] { return open(path.c_str(), flags | Always, EveryoneByUmask); }));
    if (!file.IsOpen()) ThrowSystemError(verb, path, errno);
    RequirePlain(FactsOf(file, path), path);
    return file;
}

LockResult TakeLock(const Descriptor& file, ByteRange range, const std::filesystem::path& path) {
    struct flock lock = WriteLock(range);
    const int result = Uninterrupted([&] { return fcntl(file.Number(), F_OFD_SETLK, &lock); });
    return result == 0 ? LockResult::Taken : FailedLock(path, errno);
}

LockResult ProbeLock(const Descriptor& file, ByteRange range, const std::filesystem::path& path) {
    struct flock lock = WriteLock(range);
    const int result = Uninterrupted([&] { return fcntl(file.Number(), F_OFD_GETLK, &lock); });
    if (result != 0) return FailedLock(path, errno);
    return lock.l_type == F_UNLCK ? LockResult::Taken : LockResult::Held;
}

}  // namespace jet::storage
