#include "platform/portable/temporary_entry.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "platform/portable/folder_stream.h"
#include "platform/portable/system_failure.h"

namespace quillon {
namespace {

constexpr std::string_view NameBeginning = ".quillon-", NameEnd = ".tmp";
constexpr int ToLookAt = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

/// Locks a new entry; false when another process has just taken it for abandoned.
bool Lock(int descriptor) {
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
    struct stat facts{};
    return fstat(descriptor, &facts) != 0 || facts.st_nlink > 0;
}

int OpenNewFolder(const char* path) {
    if (mkdir(path, 0777) != 0) return -1;
    const int descriptor = open(path, ToLookAt | O_DIRECTORY);
    // Another process may have cleared it away before it could be locked: on to the next name.
    if (descriptor < 0 && errno == ENOENT) errno = EEXIST;
    return descriptor;
}

/// `make(path)` gives the descriptor of a new entry, or -1 with errno set.
template <typename Make>
TemporaryEntry MakeEntry(const std::string& folder, std::string_view shownPath, unsigned number,
                         Make make) {
    const std::string beginning =
        folder + std::string(NameBeginning) + std::to_string(getpid()) + '-';
    for (;; ++number) {
        std::string path = beginning + std::to_string(number) + std::string(NameEnd);
        const int descriptor = make(path.c_str());
        if (descriptor < 0 && errno != EEXIST) throw SystemFailure(errno, shownPath);
        if (descriptor < 0) continue;
        FileHandle handle(descriptor, shownPath);
        if (Lock(descriptor)) return {std::move(path), std::move(handle)};
    }
}

/// Takes the lock of an entry that is not in use. The path may mean another one by then, made
/// after ours was finished.
bool IsAbandoned(int descriptor, const std::string& path) {
    struct stat facts{};
    struct stat named{};
    return fstat(descriptor, &facts) == 0 && (S_ISREG(facts.st_mode) || S_ISDIR(facts.st_mode)) &&
           flock(descriptor, LOCK_EX | LOCK_NB) == 0 && lstat(path.c_str(), &named) == 0 &&
           named.st_ino == facts.st_ino && named.st_dev == facts.st_dev;
}

}  // namespace

TemporaryEntry MakeTemporaryFile(const std::string& folder, std::string_view shownPath, mode_t mode,
                                 unsigned number) {
    return MakeEntry(folder, shownPath, number, [mode](const char* path) {
        return open(path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    });
}

TemporaryEntry MakeTemporaryFolder(const std::string& folder, std::string_view shownPath) {
    return MakeEntry(folder, shownPath, 0, OpenNewFolder);
}

bool IsTemporaryName(std::string_view name) {
    if (!name.starts_with(NameBeginning) || !name.ends_with(NameEnd)) return false;
    name.remove_prefix(NameBeginning.size());
    if (name.size() <= NameEnd.size()) return false;
    name.remove_suffix(NameEnd.size());
    return std::ranges::all_of(name, [](char c) { return (c >= '0' && c <= '9') || c == '-'; });
}

std::size_t RemoveAbandoned(const std::string& folder) {
    const FolderStream stream = OpenFolder(folder);
    std::size_t removed = 0;
    while (const dirent* const entry = stream ? readdir(stream.get()) : nullptr) {
        if (!IsTemporaryName(entry->d_name)) continue;
        std::string path = folder;
        path.append("/").append(entry->d_name);
        const int descriptor = open(path.c_str(), ToLookAt);
        if (descriptor < 0) continue;
        const FileHandle handle(descriptor, path);
        if (!IsAbandoned(descriptor, path)) continue;
        std::error_code kept;
        if (std::filesystem::remove_all(path, kept) > 0 && !kept) ++removed;
    }
    return removed;
}

}  // namespace quillon
