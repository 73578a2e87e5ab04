#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace jet::storage {

/// What tells a file from others, and whether anything has happened to it.
struct FileFacts {
    std::uint64_t device = 0, number = 0;  ///< together they are the file, whatever its names
    std::uint64_t names = 1;               ///< how many it has (hard links)
    std::uint64_t size = 0;
    std::int64_t written = 0;         ///< when its content changed, in nanoseconds
    std::int64_t changed = 0;         ///< when anything about it changed
    std::string_view otherKind = {};  ///< "a folder", "a FIFO", ...; empty for a plain file

    bool IsSameFile(const FileFacts& other) const {
        return device == other.device && number == other.number;
    }
    bool operator==(const FileFacts&) const = default;
};

enum class LockResult {
    Taken,
    Held,         ///< by somebody else
    Unsupported,  ///< the file system has no locks
};

/// An open file. Every failure is a jet::Error that names the file and the system's reason.
class File {
  public:
    virtual ~File() = default;

    /// Fills `bytes` from `offset` on; fewer only where the file ends. Returns how many.
    virtual std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> bytes) = 0;

    /// Writes all bytes, lengthening the file where needed.
    virtual void WriteAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) = 0;

    /// Claims disk space up to `size` without changing the file's length, so that later writes
    /// cannot run out of it. Does nothing where the file system cannot promise that.
    virtual void Reserve(std::uint64_t size) = 0;

    /// Returns when everything written has reached the disk.
    virtual void Sync() = 0;

    virtual FileFacts Facts() = 0;
    std::uint64_t Size() { return Facts().size; }

    /// Keeps this file, by whatever name others open it, from all who ask the same, until it is
    /// closed. Reading and writing do not ask.
    virtual LockResult Lock() = 0;

    /// A short text that is kept with the file itself and follows it to each of its names; none
    /// where there is none. Durable after Sync().
    virtual std::optional<std::string> Note() = 0;
    /// An empty text takes the note away. False where the file system keeps no notes.
    virtual bool SetNote(const std::string& text) = 0;
    /// Whether the file system keeps notes.
    virtual bool KeepsNotes() = 0;

    /// Another text that is kept so, for what costs no more than time where it is lost: nothing
    /// fails, and it need not be durable.
    virtual std::optional<std::string> Remark() { return std::nullopt; }
    virtual void SetRemark(const std::string& /*text*/) {}
};

enum class FileAccess {
    Read,
    ReadWrite,
    Replace,  ///< for writing; a new file in the place of one that has the name already
};

/// Everything that the pager asks of the operating system, so that tests can make any of it fail.
/// Errors are of kind NotFound, ReadOnly (permission) or Io. What could not be looked up is an
/// error, never absent.
class FileSystem {
  public:
    virtual ~FileSystem() = default;

    /// Plain files alone: a symbolic link, folder, FIFO or device of this name is an Error(Io), and
    /// nothing waits for it.
    virtual std::unique_ptr<File> Open(const std::filesystem::path& path, FileAccess access) = 0;
    /// Whether the name is taken; also by a symbolic link that leads nowhere.
    virtual bool Exists(const std::filesystem::path& path) = 0;
    /// The file that a path leads to, through symbolic links; none if there is no such file.
    virtual std::optional<FileFacts> Look(const std::filesystem::path& path) = 0;
    /// The path itself, or what it leads to where it is a symbolic link. Error(NotFound).
    virtual std::filesystem::path Resolve(const std::filesystem::path& path) = 0;
    /// The path from the root on, free of links; its last part need not exist.
    virtual std::filesystem::path FullPath(const std::filesystem::path& path) = 0;
    /// Replaces `to` in one step.
    virtual void Rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    /// A file that does not exist counts as removed; what is no plain file is an Error(Io).
    virtual void Remove(const std::filesystem::path& path) = 0;
    /// Makes the names in a file's folder (new, renamed, removed) durable.
    virtual void SyncFolderOf(const std::filesystem::path& path) = 0;
};

/// The operating system's own files.
std::shared_ptr<FileSystem> RealFileSystem();

}  // namespace jet::storage
