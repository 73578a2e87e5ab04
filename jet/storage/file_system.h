#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

namespace jet::storage {

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

    virtual std::uint64_t Size() = 0;
};

enum class FileAccess {
    Read,
    ReadWrite,
    Replace,  ///< for writing; makes the file or empties it
};

/// Everything that the pager asks of the operating system, so that tests can make any of it fail.
/// Errors are of kind NotFound, ReadOnly (permission) or Io.
class FileSystem {
  public:
    virtual ~FileSystem() = default;

    virtual std::unique_ptr<File> Open(const std::filesystem::path& path, FileAccess access) = 0;
    virtual bool Exists(const std::filesystem::path& path) = 0;
    /// Replaces `to` in one step.
    virtual void Rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    /// A file that does not exist counts as removed.
    virtual void Remove(const std::filesystem::path& path) = 0;
    /// Makes the names in a file's folder (new, renamed, removed) durable.
    virtual void SyncFolderOf(const std::filesystem::path& path) = 0;
};

/// The operating system's own files.
std::shared_ptr<FileSystem> RealFileSystem();

}  // namespace jet::storage
