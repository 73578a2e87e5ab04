#include "platform/portable/portable_files.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/failure.h"
#include "platform/portable/file_handle.h"
#include "platform/portable/safe_file.h"
#include "platform/portable/streams.h"
#include "platform/portable/system_failure.h"

namespace quillon {
namespace {

std::optional<struct stat> FactsOf(const std::string& local) {
    struct stat facts{};
    if (stat(local.c_str(), &facts) != 0) return std::nullopt;
    return facts;
}

bool IsFile(const std::string& local) {
    const std::optional<struct stat> facts = FactsOf(local);
    return facts && S_ISREG(facts->st_mode);
}

std::string_view NameIn(std::string_view localPath) {
    return localPath.substr(localPath.rfind('/') + 1);
}

/// The folder that holds what the path means, and the name it is given there.
std::pair<WindowsPath, std::string> FolderAndName(const WindowsPath& path) {
    const std::size_t slash = path.rest.rfind('/');
    if (slash == std::string::npos) return {{path.root, ""}, path.rest};
    return {{path.root, path.rest.substr(0, slash)}, path.rest.substr(slash + 1)};
}

/// With the slash at its end.
std::string FolderOf(const std::string& localPath) {
    return localPath.substr(0, localPath.rfind('/') + 1);
}

std::string Sibling(const std::string& localPath, std::string_view name) {
    return FolderOf(localPath) + std::string(name);
}

int OpenForReading(const std::string& local) {
    // A pipe must not hold up the run; on a file the flag means nothing.
    return open(local.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
}

/// Opens a file as it is written where it exists so, which is the rule, with no other call.
FileHandle OpenFile(PathResolver& resolver, const WindowsPath& path) {
    int descriptor = OpenForReading(resolver.Exact(path));
    if (descriptor < 0 && (errno == ENOENT || errno == ENOTDIR)) {
        descriptor = OpenForReading(resolver.Local(path));
    }
    const std::string shown = path.Text();
    if (descriptor < 0) throw SystemFailure(errno, shown, FailureNumber::FileNotFound);
    FileHandle file(descriptor, shown);
    if (!S_ISREG(file.Facts().st_mode)) throw SystemFailure(EACCES, shown);
    return file;
}

/// Whether a test of a path that Windows cannot hold, or cannot reach, answers no.
template <typename Test>
bool Holds(Test test) {
    try {
        return test();
    } catch (const Failure&) {
        return false;
    }
}

/// Renames, but never onto something else; the system's error number, 0 when it is done.
int RenameToFreeName(const std::string& from, const std::string& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
    // Not every file system knows that operation.
    const bool unknown = errno == EINVAL || errno == ENOSYS;
    if (unknown && rename(from.c_str(), to.c_str()) == 0) return 0;
    return errno;
}

bool IsInside(const std::string& inner, const std::string& outer) {
    std::error_code ignored;
    const std::string real = std::filesystem::canonical(inner, ignored).string() + '/';
    return real.starts_with(std::filesystem::canonical(outer, ignored).string() + '/');
}

}  // namespace

bool PortableFiles::FolderExists(std::string_view path) {
    return Holds([&] {
        const std::optional<struct stat> facts = FactsOf(resolver_.Local(path));
        return facts && S_ISDIR(facts->st_mode);
    });
}

bool PortableFiles::FileExists(std::string_view path) {
    return Holds([&] { return IsFile(resolver_.Local(path)); });
}

std::vector<FolderEntry> PortableFiles::SubFolders(std::string_view folder) {
    const WindowsPath path = ParseWindowsPath(folder);
    return lister_.SubFolders(path, resolver_.Local(path), resolver_.LocalRoot(path));
}

std::vector<FileEntry> PortableFiles::FilesIn(std::string_view folder) {
    const WindowsPath path = ParseWindowsPath(folder);
    return lister_.FilesIn(path, resolver_.Local(path));
}

FileEntry PortableFiles::GetFile(std::string_view path) {
    const WindowsPath parsed = ParseWindowsPath(path);
    const std::string local = resolver_.Local(parsed);
    const std::optional<struct stat> facts = FactsOf(local);
    if (!facts) throw SystemFailure(errno, parsed.Text(), FailureNumber::FileNotFound);
    if (!S_ISREG(facts->st_mode)) throw Failure(FailureNumber::FileNotFound, parsed.Text());
    const std::string name(NameIn(local));
    return lister_.MakeFileEntry(FolderAndName(parsed).first.Child(name), name, *facts);
}

void PortableFiles::CreateFolder(std::string_view path) {
    const WindowsPath parsed = ParseWindowsPath(path);
    const std::string local = resolver_.Local(parsed);
    if (mkdir(local.c_str(), 0777) != 0) throw SystemFailure(errno, parsed.Text());
    resolver_.Index().Added(local);
}

void PortableFiles::CopyFile(std::string_view from, std::string_view to, bool overwrite) {
    const FileHandle source = OpenFile(resolver_, ParseWindowsPath(from));
    const WindowsPath target = ParseWindowsPath(to);
    const std::string local = resolver_.Local(target);
    const struct stat facts = source.Facts();
    const std::optional<struct stat> old = FactsOf(local);
    const bool itself = old && old->st_dev == facts.st_dev && old->st_ino == facts.st_ino;
    if (itself && overwrite) throw SystemFailure(EACCES, target.Text());
    RemoveLeftoversOnce(FolderOf(local));
    SafeFile copy(local, target.Text(),
                  overwrite ? SafeFile::Existing::Replace : SafeFile::Existing::Refuse,
                  facts.st_mode & 0777U);
    copy.WriteFrom(source);
    copy.SetModified(facts.st_mtim);
    copy.Commit();
    resolver_.Index().Added(local);
}

void PortableFiles::CopyFolder(std::string_view from, std::string_view to, bool overwrite) {
    const WindowsPath source = ParseWindowsPath(from);
    const WindowsPath target = ParseWindowsPath(to);
    if (!FolderExists(target.Text())) throw Failure(FailureNumber::PathNotFound, target.Text());
    const std::vector<FolderEntry> folders = SubFolders(from);
    // A copy into the folder's own inside would never end.
    if (IsInside(resolver_.Local(target), resolver_.Local(source))) {
        throw Failure(FailureNumber::PermissionDenied, target.Text());
    }
    for (const FileEntry& file : FilesIn(from))
        CopyFile(file.path, target.Child(file.name), overwrite);
    for (const FolderEntry& folder : folders) {
        const std::string copy = target.Child(folder.name);
        if (!FolderExists(copy)) CreateFolder(copy);
        CopyFolder(folder.path, copy, overwrite);
    }
}

void PortableFiles::DeleteFile(std::string_view path) {
    const WindowsPath parsed = ParseWindowsPath(path);
    const std::string local = resolver_.Local(parsed);
    const std::string shown = parsed.Text();
    const std::optional<struct stat> facts = FactsOf(local);
    if (facts && !S_ISREG(facts->st_mode)) throw Failure(FailureNumber::FileNotFound, shown);
    // A write-protected file is one that its owner wants to keep, as on Windows.
    const bool isProtected = facts && faccessat(AT_FDCWD, local.c_str(), W_OK, AT_EACCESS) != 0;
    if (isProtected || unlink(local.c_str()) != 0) {
        throw SystemFailure(errno, shown, FailureNumber::FileNotFound);
    }
    resolver_.Index().Removed(local);
}

void PortableFiles::MoveFile(std::string_view from, std::string_view to) {
    const WindowsPath source = ParseWindowsPath(from);
    const WindowsPath target = ParseWindowsPath(to);
    const std::string oldPath = resolver_.Local(source);
    std::string newPath = resolver_.Local(target);
    if (!IsFile(oldPath)) throw Failure(FailureNumber::FileNotFound, source.Text());
    if (newPath == oldPath) {
        // The same file in the target's spelling: a change of letter case, or nothing at all.
        newPath = Sibling(oldPath, FolderAndName(target).second);
        if (newPath != oldPath && rename(oldPath.c_str(), newPath.c_str()) != 0) {
            throw SystemFailure(errno, target.Text());
        }
    } else if (FactsOf(newPath)) {
        throw Failure(FailureNumber::FileAlreadyExists, target.Text());
    } else {
        const int error = RenameToFreeName(oldPath, newPath);
        if (error == EXDEV) {
            // Between two volumes a file is moved by way of a copy.
            CopyFile(from, to, false);
            DeleteFile(from);
        } else if (error != 0) {
            throw SystemFailure(error, target.Text());
        }
    }
    resolver_.Index().Removed(oldPath);
    resolver_.Index().Added(newPath);
}

std::unique_ptr<TextReader> PortableFiles::OpenText(std::string_view path) {
    return std::make_unique<AnsiTextReader>(OpenFile(resolver_, ParseWindowsPath(path)));
}

std::unique_ptr<TextWriter> PortableFiles::CreateText(std::string_view path) {
    const WindowsPath parsed = ParseWindowsPath(path);
    const std::string local = resolver_.Local(parsed);
    RemoveLeftoversOnce(FolderOf(local));
    return std::make_unique<AnsiTextWriter>(local, parsed.Text(),
                                            [this, local] { resolver_.Index().Added(local); });
}

std::unique_ptr<BinaryReader> PortableFiles::OpenBinary(std::string_view path) {
    return std::make_unique<PositionedReader>(OpenFile(resolver_, ParseWindowsPath(path)));
}

void PortableFiles::RemoveLeftoversOnce(const std::string& folder) {
    if (withoutLeftovers_.insert(folder).second) SafeFile::RemoveAbandoned(folder);
}

}  // namespace quillon
