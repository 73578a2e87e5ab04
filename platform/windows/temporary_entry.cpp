#include "platform/portable/temporary_entry.h"

#include <cerrno>
#include <fcntl.h>
#include <vector>

#include "platform/portable/folder_stream.h"
#include "platform/portable/system_failure.h"
#include "platform/windows/wide_text.h"
#include "platform/windows/windows_facts.h"

namespace quillon {
namespace {

/// `make(path)` gives the descriptor of a new entry, or -1 with errno set.
template <typename Make>
TemporaryEntry MakeEntry(const std::string& folder, std::string_view shownPath, unsigned number,
                         Make make) {
    for (;; ++number) {
        std::string path = folder + TemporaryName(number);
        const int descriptor = make(path);
        if (descriptor < 0 && errno != EEXIST) throw SystemFailure(errno, shownPath);
        if (descriptor >= 0) return {std::move(path), FileHandle(descriptor, shownPath)};
    }
}

/// Opens an entry for writing, which is what tells that somebody works on it.
HANDLE OpenEntry(const std::string& path, DWORD sharing) {
    return CreateFileW(WidePath(path).c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, sharing,
                       nullptr, OPEN_EXISTING,
                       FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
}

int OpenNewFolder(const std::string& path) {
    if (const int error = MakeFolder(path); error != 0) {
        errno = error;
        return -1;
    }
    const int descriptor =
        DescriptorOf(OpenEntry(path, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE),
                     _O_RDONLY | _O_BINARY | _O_NOINHERIT);
    // Another process may have cleared it away before it was opened: on to the next name.
    if (descriptor < 0 && (errno == ENOENT || errno == EBUSY || errno == EACCES)) errno = EEXIST;
    return descriptor;
}

/// Whether nobody has it open for writing.
bool IsAbandoned(const std::string& path) {
    const DWORD attributes = GetFileAttributesW(WidePath(path).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0)
        SetFileAttributesW(WidePath(path).c_str(), FILE_ATTRIBUTE_NORMAL);
    const SystemHandle entry(OpenEntry(path, FILE_SHARE_READ | FILE_SHARE_DELETE));
    return static_cast<bool>(entry);
}

}  // namespace

TemporaryEntry MakeTemporaryFile(const std::string& folder, std::string_view shownPath,
                                 std::uint32_t rights, unsigned number) {
    return MakeEntry(folder, shownPath, number,
                     [rights](const std::string& path) { return CreateLocal(path, rights); });
}

TemporaryEntry MakeTemporaryFolder(const std::string& folder, std::string_view shownPath) {
    return MakeEntry(folder, shownPath, 0, OpenNewFolder);
}

std::size_t RemoveAbandoned(const std::string& folder) {
    std::vector<std::string> found;
    FolderStream stream = OpenFolder(folder);
    ListedKind kind{};
    while (const char* const name = stream ? stream.Next(kind) : nullptr)
        if (IsTemporaryName(name)) found.emplace_back(folder + '/' + name);
    std::size_t removed = 0;
    for (const std::string& path : found)
        if (IsAbandoned(path) && RemoveAll(path) == 0) ++removed;
    return removed;
}

}  // namespace quillon
