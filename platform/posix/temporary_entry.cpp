#include "platform/portable/temporary_entry.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/portable/folder_stream.h"
#include "platform/portable/system_failure.h"

namespace quillon {
namespace {

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
    for (;; ++number) {
        std::string path = folder + TemporaryName(number);
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

TemporaryEntry MakeTemporaryFile(const std::string& folder, std::string_view shownPath,
                                 std::uint32_t rights, unsigned number) {
    return MakeEntry(folder, shownPath, number,
                     [rights](const char* path) { return CreateLocal(path, rights); });
}

TemporaryEntry MakeTemporaryFolder(const std::string& folder, std::string_view shownPath) {
    return MakeEntry(folder, shownPath, 0, OpenNewFolder);
}

std::size_t RemoveAbandoned(const std::string& folder) {
    FolderStream stream = OpenFolder(folder);
    std::size_t removed = 0;
    ListedKind kind{};
    while (const char* const name = stream ? stream.Next(kind) : nullptr) {
        if (!IsTemporaryName(name)) continue;
        std::string path = folder;
        path.append("/").append(name);
        const int descriptor = open(path.c_str(), ToLookAt);
        if (descriptor < 0) continue;
        const FileHandle handle(descriptor, path);
        if (!IsAbandoned(descriptor, path)) continue;
        if (RemoveAll(path) == 0) ++removed;
    }
    return removed;
}

}  // namespace quillon
