#include "platform/portable/safe_file.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>

#include "platform/portable/folder_stream.h"
#include "platform/portable/local_file.h"
#include "platform/portable/system_failure.h"

namespace quillon {
namespace {

constexpr std::string_view TemporaryBeginning = ".quillon-";
constexpr std::string_view TemporaryEnd = ".tmp";

/// The file that a path leads to through symbolic links; a link that leads nowhere is replaced.
std::string BehindLinks(const std::string& path) {
    std::error_code nowhere;
    if (!std::filesystem::is_symlink(path, nowhere)) return path;
    const std::filesystem::path real = std::filesystem::canonical(path, nowhere);
    return nowhere ? path : real.string();
}

/// Makes a rename outlast a power cut. Some file systems cannot do that for a folder; the rename
/// has happened all the same.
void SyncFolder(const std::string& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    fsync(descriptor);
    close(descriptor);
}

}  // namespace

SafeFile::SafeFile(const std::string& target, std::string_view shownPath, Existing existing,
                   mode_t mode)
    : target_(BehindLinks(target)),
      shownPath_(shownPath),
      existing_(existing),
      file_(Create(mode)) {}

FileHandle SafeFile::Create(mode_t mode) {
    const std::optional<struct stat> old = FactsOf(target_);
    if (old && existing_ == Existing::Refuse) throw SystemFailure(EEXIST, shownPath_);
    if (old && !S_ISREG(old->st_mode)) throw SystemFailure(EACCES, shownPath_);
    if (old && faccessat(AT_FDCWD, target_.c_str(), W_OK, AT_EACCESS) != 0)
        throw SystemFailure(errno, shownPath_);
    const std::string beginning =
        FolderOf(target_) + std::string(TemporaryBeginning) + std::to_string(getpid()) + '-';
    int descriptor = -1;
    for (unsigned number = 0; descriptor < 0; ++number) {
        temporary_ = beginning + std::to_string(number) + std::string(TemporaryEnd);
        descriptor = open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (descriptor < 0 && errno != EEXIST) throw SystemFailure(errno, shownPath_);
    }
    // The lock tells the file from one that a killed run has left. Where locks are not to be had,
    // such files merely stay.
    flock(descriptor, LOCK_EX | LOCK_NB);
    if (old) {
        // Only the super-user may give a file away; for everyone else it is theirs already.
        if (fchown(descriptor, old->st_uid, old->st_gid) != 0) errno = 0;
        fchmod(descriptor, old->st_mode & 07777U);
    }
    return {descriptor, shownPath_};
}

SafeFile::~SafeFile() {
    if (!committed_) unlink(temporary_.c_str());
}

void SafeFile::WriteFrom(const FileHandle& source) {
    constexpr std::size_t AtATime = std::size_t{1} << 30U;
    off_t position = 0;
    // The kernel copies, where it can for these two files, without a way through this process.
    while (copy_file_range(source.Descriptor(), &position, file_.Descriptor(), nullptr, AtATime,
                           0) > 0) {
    }
    std::array<std::uint8_t, 65536> buffer{};
    while (const std::size_t length = source.ReadAt(static_cast<std::uint64_t>(position), buffer)) {
        Write({reinterpret_cast<const char*>(buffer.data()), length});
        position += static_cast<off_t>(length);
    }
}

void SafeFile::SetModified(const std::timespec& modified) {
    const std::array<std::timespec, 2> times{std::timespec{0, UTIME_OMIT}, modified};
    if (futimens(file_.Descriptor(), times.data()) != 0) throw SystemFailure(errno, shownPath_);
}

void SafeFile::Sync() {
    if (fsync(file_.Descriptor()) != 0) throw SystemFailure(errno, shownPath_);
}

void SafeFile::Commit() {
    Sync();
    Rename();
    committed_ = true;
    SyncFolder(FolderOf(target_));
}

void SafeFile::Rename() {
    const char* const from = temporary_.c_str();
    const char* const to = target_.c_str();
    if (existing_ == Existing::Refuse) {
        if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return;
        // Not every file system knows that operation.
        if (errno != EINVAL && errno != ENOSYS) throw SystemFailure(errno, shownPath_);
        struct stat taken{};
        if (lstat(to, &taken) == 0) throw SystemFailure(EEXIST, shownPath_);
        if (errno != ENOENT) throw SystemFailure(errno, shownPath_);
    }
    if (rename(from, to) != 0) throw SystemFailure(errno, shownPath_);
}

bool SafeFile::IsTemporaryName(std::string_view name) {
    return name.starts_with(TemporaryBeginning) && name.ends_with(TemporaryEnd) &&
           name.size() > TemporaryBeginning.size() + TemporaryEnd.size();
}

std::size_t SafeFile::RemoveAbandoned(const std::string& folder) {
    const FolderStream stream = OpenFolder(folder);
    std::size_t removed = 0;
    while (const dirent* const entry = stream ? readdir(stream.get()) : nullptr) {
        if (!IsTemporaryName(entry->d_name)) continue;
        const std::string path = folder + '/' + entry->d_name;
        const int descriptor = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        if (descriptor < 0) continue;
        const FileHandle file(descriptor, path);
        const bool abandoned =
            S_ISREG(file.Facts().st_mode) && flock(descriptor, LOCK_EX | LOCK_NB) == 0;
        if (abandoned && unlink(path.c_str()) == 0) ++removed;
    }
    return removed;
}

}  // namespace quillon
