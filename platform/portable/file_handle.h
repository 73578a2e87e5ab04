#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <span>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <utility>

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
    ~FileHandle();

    /// Up to `buffer.size()` bytes from a position on; fewer only at the file's end.
    std::size_t ReadAt(std::uint64_t position, std::span<std::uint8_t> buffer) const;
    /// Appends all bytes.
    void Write(std::string_view bytes) const;
    /// Appends all that is in another file from a place on.
    void WriteFrom(const FileHandle& source, std::uint64_t from = 0) const;
    /// The modification time that the file is to have.
    void SetModified(const std::timespec& modified) const;
    /// Size, times and kind.
    struct stat Facts() const;

    int Descriptor() const noexcept { return descriptor_; }
    const std::string& ShownPath() const noexcept { return shownPath_; }

  private:
    int descriptor_;
    std::string shownPath_;
};

}  // namespace quillon
