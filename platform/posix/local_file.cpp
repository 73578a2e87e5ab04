#include "platform/portable/local_file.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <system_error>
#include <unistd.h>

#include "platform/posix/posix_facts.h"

namespace quillon {
namespace {

int ErrorOf(int result) {
    return result == 0 ? 0 : errno;
}

}  // namespace

const std::uint32_t NewFileRights = 0666;

bool SpeaksWindowsPaths() {
    return false;
}

bool HasRoot(std::string_view /*root*/) {
    return false;
}

std::string FolderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

std::optional<FileFacts> FactsOf(const std::string& path) {
    struct stat facts{};
    if (stat(path.c_str(), &facts) != 0) return std::nullopt;
    return FactsFrom(facts);
}

std::optional<FileFacts> FactsOfLink(const std::string& path) {
    struct stat facts{};
    if (lstat(path.c_str(), &facts) != 0) return std::nullopt;
    return FactsFrom(facts);
}

int OpenLocal(const std::string& path, FileUse use) {
    // A pipe must not hold up the run; on a file the flag means nothing.
    constexpr int Always = O_CLOEXEC | O_NONBLOCK;
    switch (use) {
        case FileUse::Read:
            return open(path.c_str(), O_RDONLY | Always);
        case FileUse::ReadAndWrite:
            return open(path.c_str(), O_RDWR | Always);
        case FileUse::Append:
            break;
    }
    return open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | Always, NewFileRights);
}

int CreateLocal(const std::string& path, std::uint32_t rights) {
    return open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, rights & 0777U);
}

void SyncFolder(const std::string& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    fsync(descriptor);
    close(descriptor);
}

bool FlushTakesAll() {
    return true;
}

int MakeFolder(const std::string& path) {
    return ErrorOf(mkdir(path.c_str(), 0777));
}

int RemoveFile(const std::string& path) {
    return ErrorOf(unlink(path.c_str()));
}

int RemoveEntry(const std::string& path) {
    return ErrorOf(std::remove(path.c_str()));
}

int RemoveAll(const std::string& path) {
    std::error_code error;
    std::filesystem::remove_all(path, error);
    return error.value();
}

int RenameToFreeName(const std::string& from, const std::string& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
    // Not every file system knows that operation.
    if (errno != EINVAL && errno != ENOSYS) return errno;
    if (faccessat(AT_FDCWD, to.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0) return EEXIST;
    if (errno != ENOENT) return errno;
    return ErrorOf(rename(from.c_str(), to.c_str()));
}

int RenameOver(const std::string& from, const std::string& to) {
    return ErrorOf(rename(from.c_str(), to.c_str()));
}

bool MayWrite(const std::string& path) {
    return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

std::optional<std::string> RealPath(const std::string& path) {
    std::error_code error;
    const std::filesystem::path real = std::filesystem::canonical(path, error);
    if (!error) return real.string();
    errno = error.value();
    return std::nullopt;
}

std::string NameOnDisk(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

std::string SpellingOnDisk(const std::string& path) {
    return path;
}

}  // namespace quillon
