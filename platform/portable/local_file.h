#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What this program needs of the operating system's files, by local path. A local path has slashes
/// between its names on every system: `/srv/music/x.mp3`, `D:/Music/x.mp3`, `//server/share/x.mp3`.
/// Implemented in platform/posix and platform/windows. Where something fails `errno` says why, as
/// the standard library's error numbers do.
namespace quillon {

/// A moment as file systems count it, from the beginning of 1970 (UTC) on.
struct FileTime {
    std::int64_t seconds = 0;
    std::int32_t nanoseconds = 0;
    bool operator==(const FileTime&) const = default;

    std::int64_t InNanoseconds() const {
        constexpr std::int64_t InASecond = 1'000'000'000;
        return seconds * InASecond + nanoseconds;
    }
};

enum class LocalKind { File, Folder, Link, Pipe, Socket, Device };

/// What a file or folder is, whatever its names.
struct FileIdentity {
    std::uint64_t device = 0, number = 0;
    auto operator<=>(const FileIdentity&) const = default;
};

/// What the system knows of a file or folder.
struct FileFacts {
    LocalKind kind = LocalKind::Device;
    std::uint64_t size = 0;
    FileTime modified;
    FileTime changed;  ///< by the system's own count; 0 where it keeps none
    FileIdentity identity;
    /// Who may do what with it, in the system's own terms; a copy takes `rights` over, and a file
    /// that replaces another one its owners, too.
    std::uint32_t rights = 0, owner = 0, group = 0;

    bool IsFile() const { return kind == LocalKind::File; }
    bool IsFolder() const { return kind == LocalKind::Folder; }
};

/// Whether the system's own paths are Windows paths: they begin with a drive or a share, and letter
/// case does not count in their names.
bool SpeaksWindowsPaths();

/// Whether a root, `D:` or `\\server\share`, is there: a share only where its server answers. Never
/// where the system has no such paths.
bool HasRoot(std::string_view root);

/// The rights of a new file, before what the system takes from them.
extern const std::uint32_t NewFileRights;

/// What the system knows of a local path; nothing where it leads nowhere. FactsOf() follows links,
/// FactsOfLink() does not.
std::optional<FileFacts> FactsOf(const std::string& path);
std::optional<FileFacts> FactsOfLink(const std::string& path);

/// The folder of a local path, with the slash at its end.
std::string FolderOf(const std::string& path);

/// What a file is opened for.
enum class FileUse { Read, ReadAndWrite, Append };

/// A descriptor of the file, which must be there unless it is to be appended to; -1 where it cannot
/// be opened. A pipe does not hold up the caller; a folder can be opened for reading.
int OpenLocal(const std::string& path, FileUse use);

/// A descriptor of a new file for writing; -1 with EEXIST where the name is taken.
int CreateLocal(const std::string& path, std::uint32_t rights);

/// Makes a rename in the folder outlast a power cut. Some file systems cannot do that for a folder;
/// the rename has happened all the same.
void SyncFolder(const std::string& folder);

/// Whether a flush of one file takes all others of its file system along: then one flush serves
/// many files, else each needs its own.
bool FlushTakesAll();

// Each of these returns the system's error number, 0 when it is done.

int MakeFolder(const std::string& path);
/// Removes a file or a link, of a link not what it leads to.
int RemoveFile(const std::string& path);
/// Removes a file, write-protected or not, or an empty folder.
int RemoveEntry(const std::string& path);
/// Removes a file or a folder with all that is in it; of links only the links.
int RemoveAll(const std::string& path);
/// Renames a local file, but never onto something else; EXDEV between two file systems.
int RenameToFreeName(const std::string& from, const std::string& to);
/// Renames a local file onto a name, which another file may have.
int RenameOver(const std::string& from, const std::string& to);

/// Whether this process may write the file, or change the folder, at the path.
bool MayWrite(const std::string& path);

/// The path without links in it; nothing where it leads nowhere.
std::optional<std::string> RealPath(const std::string& path);

/// A file's name as the disk has it.
std::string NameOnDisk(const std::string& path);

/// The path with its names as the disk has them, as far as it is there. Where letter case makes two
/// names that is the path itself.
std::string SpellingOnDisk(const std::string& path);

}  // namespace quillon
