#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "platform/portable/file_handle.h"

namespace quillon {

/// The folder of the journals, made where there is none; a link in its place is not followed.
class JournalPlace {
  public:
    /// Failure: PermissionDenied and the like.
    explicit JournalPlace(const std::filesystem::path& folder);

    bool IsTaken(const std::string& name) const;
    /// A new file to append to; none where the name is taken. Failure.
    std::optional<FileHandle> Make(const std::string& name) const;
    void Remove(const std::string& name) const noexcept;
    /// Makes names durable, where the file system can do that for a folder.
    void Sync() const noexcept;

  private:
    FileHandle folder_;
};

/// Sets room aside on the disk behind a file's end, without changing its length. The system's error
/// number, 0 when it is done.
int Reserve(const FileHandle& file, std::uint64_t from, std::uint64_t to);

}  // namespace quillon
