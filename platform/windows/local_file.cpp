#include "platform/portable/local_file.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <vector>

#include "platform/basic_text.h"
#include "platform/portable/folder_stream.h"
#include "platform/windows/wide_text.h"
#include "platform/windows/windows_facts.h"

namespace quillon {
namespace {

/// Others may do what they like with the file meanwhile, as on other systems.
constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

int ErrorOf(BOOL result) {
    return result != 0 ? 0 : LastErrno();
}

std::optional<FileFacts> LookAt(const std::string& path, DWORD flags) {
    const std::wstring wide = WidePath(path);
    const SystemHandle file(CreateFileW(wide.c_str(), FILE_READ_ATTRIBUTES, ShareAll, nullptr,
                                        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | flags,
                                        nullptr));
    if (file) return FactsOfHandle(file.Get());
    errno = LastErrnoAt(wide);
    return std::nullopt;
}

DWORD AttributesOf(const std::string& path) {
    return GetFileAttributesW(WidePath(path).c_str());
}

bool IsFolderName(DWORD attributes) {
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

/// A write-protected file cannot be removed before it is none.
void Unprotect(const std::string& path, DWORD attributes) {
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_READONLY) == 0)
        return;
    const DWORD other = attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY);
    SetFileAttributesW(WidePath(path).c_str(), other == 0 ? FILE_ATTRIBUTE_NORMAL : other);
}

int RemoveContentOf(const std::string& folder) {
    int error = 0;
    // All names first: what is removed in between might move the others about.
    std::vector<std::string> names;
    {
        FolderStream stream = OpenFolder(folder);
        ListedKind kind{};
        while (const char* const name = stream ? stream.Next(kind) : nullptr)
            names.emplace_back(name);
    }
    for (const std::string& name : names)
        if (const int one = RemoveAll(folder + '/' + name); one != 0) error = one;
    return error;
}

}  // namespace

const std::uint32_t NewFileRights = 0;

bool SpeaksWindowsPaths() {
    return true;
}

bool HasRoot(std::string_view root) {
    const bool isDrive = root.size() == 2 && root[1] == ':';
    if (!isDrive)
        return root.starts_with(R"(\\)") && IsFolderName(AttributesOf(std::string(root) + '\\'));
    const auto letter = static_cast<unsigned>((root[0] | 0x20) - 'a');
    return letter < 26 && ((GetLogicalDrives() >> letter) & 1U) != 0;
}

std::string FolderOf(const std::string& path) {
    // Paths of the standard library's have backslashes.
    return path.substr(0, path.find_last_of("/\\") + 1);
}

std::optional<FileFacts> FactsOf(const std::string& path) {
    return LookAt(path, 0);
}

std::optional<FileFacts> FactsOfLink(const std::string& path) {
    return LookAt(path, FILE_FLAG_OPEN_REPARSE_POINT);
}

int OpenLocal(const std::string& path, FileUse use) {
    const auto open = [wide = WidePath(path)](DWORD access, DWORD how, DWORD attributes,
                                              int flags) {
        HANDLE const file =
            CreateFileW(wide.c_str(), access, ShareAll, nullptr, how, attributes, nullptr);
        if (file != INVALID_HANDLE_VALUE)
            return DescriptorOf(file, flags | _O_BINARY | _O_NOINHERIT);
        errno = LastErrnoAt(wide);
        return -1;
    };
    switch (use) {
        case FileUse::Read:
            return open(GENERIC_READ, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, _O_RDONLY);
        case FileUse::ReadAndWrite:
            // An administrator might be let into a write-protected file all the same.
            if (!MayWrite(path)) return -1;
            return open(GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                        _O_RDWR);
        case FileUse::Append:
            break;
    }
    return open(FILE_APPEND_DATA | FILE_READ_ATTRIBUTES | SYNCHRONIZE, OPEN_ALWAYS,
                FILE_ATTRIBUTE_NORMAL, _O_WRONLY | _O_APPEND);
}

int CreateLocal(const std::string& path, std::uint32_t rights) {
    const DWORD attributes = rights & KeptAttributes;
    HANDLE const file = CreateFileW(WidePath(path).c_str(), GENERIC_READ | GENERIC_WRITE | DELETE,
                                    ShareAll, nullptr, CREATE_NEW,
                                    attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes, nullptr);
    return DescriptorOf(file, _O_RDWR | _O_BINARY | _O_NOINHERIT);
}

void SyncFolder(const std::string& /*folder*/) {
    // Renames are written through when they are made.
}

bool FlushTakesAll() {
    return false;
}

int MakeFolder(const std::string& path) {
    return ErrorOf(CreateDirectoryW(WidePath(path).c_str(), nullptr));
}

int RemoveFile(const std::string& path) {
    const std::wstring wide = WidePath(path);
    if (DeleteFileW(wide.c_str()) != 0) return 0;
    const int error = LastErrnoAt(wide);
    // A link to a folder is removed as a folder is.
    const auto facts = FactsOfLink(path);
    const bool isFolderLink =
        facts && facts->kind == LocalKind::Link && IsFolderName(GetFileAttributesW(wide.c_str()));
    return isFolderLink ? ErrorOf(RemoveDirectoryW(wide.c_str())) : error;
}

int RemoveEntry(const std::string& path) {
    const DWORD attributes = AttributesOf(path);
    if (IsFolderName(attributes)) return ErrorOf(RemoveDirectoryW(WidePath(path).c_str()));
    Unprotect(path, attributes);
    return RemoveFile(path);
}

int RemoveAll(const std::string& path) {
    const auto facts = FactsOfLink(path);
    if (!facts) return errno == ENOENT ? 0 : errno;
    const int error = facts->IsFolder() ? RemoveContentOf(path) : 0;
    return error != 0 ? error : RemoveEntry(path);
}

int RenameToFreeName(const std::string& from, const std::string& to) {
    return ErrorOf(
        MoveFileExW(WidePath(from).c_str(), WidePath(to).c_str(), MOVEFILE_WRITE_THROUGH));
}

int RenameOver(const std::string& from, const std::string& to) {
    const auto rename = [](const std::string& one, const std::string& other) {
        return ErrorOf(MoveFileExW(WidePath(one).c_str(), WidePath(other).c_str(),
                                   MOVEFILE_WRITE_THROUGH | MOVEFILE_REPLACE_EXISTING));
    };
    const int error = rename(from, to);
    const bool isSameName = error == 0 && from != to && EqualIgnoringCase(from, to);
    if (!isSameName || NameOnDisk(to) == to.substr(to.rfind('/') + 1)) return error;
    // Some servers take a name in other letter case for the same one, and do nothing.
    const std::string between = to + '~';
    if (const int first = RenameToFreeName(from, between); first != 0) return first;
    const int second = rename(between, to);
    if (second != 0) rename(between, from);
    return second;
}

bool MayWrite(const std::string& path) {
    // Of a folder the attribute means something else. What else keeps a file from being written,
    // the system says when it is tried.
    const std::wstring wide = WidePath(path);
    const DWORD attributes = GetFileAttributesW(wide.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        errno = LastErrnoAt(wide);
        return false;
    }
    errno = EACCES;
    return IsFolderName(attributes) || (attributes & FILE_ATTRIBUTE_READONLY) == 0;
}

std::optional<std::string> RealPath(const std::string& path) {
    const SystemHandle file(CreateFileW(WidePath(path).c_str(), FILE_READ_ATTRIBUTES, ShareAll,
                                        nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS,
                                        nullptr));
    std::wstring real(32768, L'\0');
    const DWORD length = file ? GetFinalPathNameByHandleW(file.Get(), real.data(),
                                                          static_cast<DWORD>(real.size()), 0)
                              : 0;
    if (length == 0 || length >= real.size()) {
        errno = LastErrno();
        return std::nullopt;
    }
    real.resize(length);
    std::string local = LocalPathOf(real);
    // A drive's own folder is shown with a slash.
    while (local.size() > 3 && local.back() == '/')
        local.pop_back();
    return local;
}

std::string NameOnDisk(const std::string& path) {
    const std::string name = path.substr(path.rfind('/') + 1);
    const std::string real = RealPath(path).value_or("");
    const std::string realName = real.substr(real.rfind('/') + 1);
    // Behind a link lies another name.
    return EqualIgnoringCase(name, realName) ? realName : name;
}

std::string SpellingOnDisk(const std::string& path) {
    // One question is enough where no link is on the way.
    if (const auto real = RealPath(path); real && EqualIgnoringCase(*real, path))
        return path.substr(0, path.find('/')) + real->substr(path.find('/'));
    std::string spelt = path;
    std::size_t end = path.size();
    // From the end on: a name that is not there has none in the folders behind it either.
    while (true) {
        const std::size_t slash = end == 0 ? std::string::npos : path.rfind('/', end - 1);
        const bool isRoot =
            slash == std::string::npos || slash == 0 || path[slash - 1] == '/' || end - slash <= 1;
        if (isRoot) return spelt;
        WIN32_FIND_DATAW found{};
        HANDLE const search =
            FindFirstFileExW(WidePath(path.substr(0, end)).c_str(), FindExInfoBasic, &found,
                             FindExSearchNameMatch, nullptr, 0);
        if (search != INVALID_HANDLE_VALUE) {
            FindClose(search);
            const std::string name = NarrowText(static_cast<const wchar_t*>(found.cFileName));
            // A short name of eight letters and three has another length.
            if (name.size() == end - slash - 1) spelt.replace(slash + 1, name.size(), name);
        }
        end = slash;
    }
}

}  // namespace quillon
