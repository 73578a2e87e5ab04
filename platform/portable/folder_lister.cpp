#include "platform/portable/folder_lister.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <system_error>
#include <utility>

#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/portable/folder_stream.h"
#include "platform/portable/system_failure.h"
#include "platform/portable/temporary_entry.h"

namespace quillon {
namespace {

using Identity = std::pair<dev_t, ino_t>;

Identity IdentityOf(const struct stat& facts) {
    return {facts.st_dev, facts.st_ino};
}

/// The folders on the way from the mapped folder to `local`, both included.
std::vector<Identity> FoldersOnTheWay(const std::string& local, const std::string& localRoot) {
    std::vector<Identity> folders;
    std::size_t end = localRoot.size();
    while (true) {
        const std::string folder = end == 0 ? "/" : local.substr(0, end);
        struct stat facts{};
        if (stat(folder.c_str(), &facts) == 0) folders.push_back(IdentityOf(facts));
        if (end >= local.size()) return folders;
        end = std::min(local.find('/', end + 1), local.size());
    }
}

/// A name with the bytes that are not text as \xE9.
std::string Printable(std::string_view name) {
    if (IsValidUtf8(name)) return std::string(name);
    std::string text;
    for (const char character : name) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x80) {
            text += character;
        } else {
            std::array<char, 5> escape{};
            std::snprintf(escape.data(), escape.size(), "\\x%02X", byte);
            text += escape.data();
        }
    }
    return text;
}

template <typename Entry>
void SortByName(std::vector<Entry>& entries) {
    std::sort(entries.begin(), entries.end(), [](const Entry& left, const Entry& right) {
        return WindowsNameLess(left.name, right.name);
    });
}

}  // namespace

/// Calls visit(name, facts) for every entry that Windows could show.
template <typename Visit>
void FolderLister::ForEach(const WindowsPath& shown, const std::string& local, Wanted wanted,
                           Visit visit) {
    const FolderStream stream = OpenFolder(local);
    if (!stream) throw SystemFailure(errno, shown.Text());
    const unsigned char unwanted = wanted == Wanted::Folders ? DT_REG : DT_DIR;
    bool holdsUnfinished = false;
    while (true) {
        errno = 0;
        const dirent* const entry = readdir(stream.get());
        if (entry == nullptr) break;
        const std::string_view name = entry->d_name;
        if (name == "." || name == "..") continue;
        if (IsTemporaryName(name)) {
            holdsUnfinished = true;
            continue;
        }
        if (entry->d_type == unwanted) continue;
        if (!IsWindowsName(name)) {
            Note(IsValidUtf8(name) ? "a name that Windows cannot hold" : "a name that is not UTF-8",
                 shown, name);
            continue;
        }
        struct stat facts{};
        if (ReadFacts(dirfd(stream.get()), shown, entry->d_name, facts)) visit(name, facts);
    }
    if (errno != 0) throw SystemFailure(errno, shown.Text());
    if (holdsUnfinished && clearsUnfinished_) RemoveAbandoned(local);
}

/// False for an entry that cannot be shown; one that has vanished meanwhile is not worth a word.
bool FolderLister::ReadFacts(int folder, const WindowsPath& shown, const char* name,
                             struct stat& facts) {
    if (fstatat(folder, name, &facts, 0) == 0) {
        const bool known = S_ISREG(facts.st_mode) || S_ISDIR(facts.st_mode);
        if (!known) Note("neither file nor folder", shown, name);
        return known;
    }
    const int error = errno;
    struct stat link{};
    if (fstatat(folder, name, &link, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno != ENOENT) throw SystemFailure(errno, shown.Child(name));
        return false;
    }
    if (S_ISLNK(link.st_mode)) {
        Note("a link that leads nowhere", shown, name);
    } else if (error != ENOENT) {
        Note(std::generic_category().message(error), shown, name);
    }
    return false;
}

void FolderLister::Note(std::string_view reason, const WindowsPath& folder, std::string_view name) {
    const std::string path = folder.Child(Printable(name));
    if (!noted_.insert(path).second || !note_) return;
    note_("Left out, " + std::string(reason) + ": " + path);
}

std::vector<FolderEntry> FolderLister::SubFolders(const WindowsPath& shown,
                                                  const std::string& local,
                                                  const std::string& localRoot) {
    std::vector<FolderEntry> folders;
    const std::vector<Identity> onTheWay = FoldersOnTheWay(local, localRoot);
    ForEach(shown, local, Wanted::Folders, [&](std::string_view name, const struct stat& facts) {
        if (!S_ISDIR(facts.st_mode)) return;
        const bool loops =
            std::find(onTheWay.begin(), onTheWay.end(), IdentityOf(facts)) != onTheWay.end();
        if (loops) {
            Note("a folder inside itself", shown, name);
        } else {
            folders.push_back({shown.Child(name), std::string(name)});
        }
    });
    SortByName(folders);
    return folders;
}

std::vector<FileEntry> FolderLister::FilesIn(const WindowsPath& shown, const std::string& local) {
    std::vector<FileEntry> files;
    const std::string beginning = shown.Child("");
    ForEach(shown, local, Wanted::Files, [&](std::string_view name, const struct stat& facts) {
        if (S_ISREG(facts.st_mode)) {
            files.push_back(MakeFileEntry(beginning + std::string(name), std::string(name), facts));
        }
    });
    SortByName(files);
    return files;
}

FileEntry FolderLister::MakeFileEntry(std::string path, std::string name,
                                      const struct stat& facts) {
    return {std::move(path), std::move(name), static_cast<std::uint64_t>(facts.st_size),
            localTime_.Of(facts.st_mtim.tv_sec)};
}

}  // namespace quillon
