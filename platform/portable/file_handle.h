#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "platform/portable/local_file.h"

namespace quillon {

/// An open file of the operating system, closed with this object. Operations throw Failure with the
/// Windows path that it was opened as.
class FileHandle {
  public:
    FileHandle(int descriptor, std::string_view shownPath)
        : descriptor_(descriptor), shownPath_(shownPath) {}
    FileHandle(FileHandle&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1)),
          shownPath_(std::move(other.shownPath_)) {}
    FileHandle& operator=(FileHandle&&) = delete;
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    ~FileHandle() { Close(); }

    /// Up to `buffer.size()` bytes from a position on; fewer only at the file's end.
    std::size_t ReadAt(std::uint64_t position, std::span<std::uint8_t> buffer) const;
    /// Appends all bytes.
    void Write(std::string_view bytes) const;
    /// Appends all that is in another file from a place on. `watch`, which may be empty, is told of
    /// each piece, in bytes.
    void WriteFrom(const FileHandle& source, std::uint64_t from = 0,
                   const std::function<void(std::uint64_t bytes)>& watch = {}) const;
    /// The modification time that the file is to have.
    void SetModified(const FileTime& modified) const;
    /// Size, times and kind.
    FileFacts Facts() const;
    /// Gives the file the rights of another one and, where this process may do that, its owners.
    void TakeRightsOf(const FileFacts& other) const;

    // Each of these returns the system's error number, 0 when it is done.

    /// Writes all bytes with as few calls as the system takes them in: one, unless it fails midway.
    int WriteAt(std::uint64_t position, std::span<const std::uint8_t> bytes) const;
    int SetSize(std::uint64_t size) const;
    int TrySetModified(const FileTime& modified) const;
    /// Waits until the file's content is on the disk; FlushAll() takes the other files of its file
    /// system along, where FlushTakesAll().
    int Flush() const;
    int FlushAll() const;

    /// Before the object's end; nothing else may follow.
    void Close() noexcept;

    int Descriptor() const noexcept { return descriptor_; }
    const std::string& ShownPath() const noexcept { return shownPath_; }

  private:
    int descriptor_;
    std::string shownPath_;
};

}  // namespace quillon
