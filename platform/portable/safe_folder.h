#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/portable/file_handle.h"
#include "platform/portable/temporary_entry.h"

namespace quillon {

/// A folder that appears under its name whole or not at all: it is filled under a temporary name
/// beside it and renamed in Commit(). Destroyed without Commit() it leaves nothing behind.
class SafeFolder {
  public:
    /// `target` is the local path, `shownPath` the Windows path for failures.
    SafeFolder(std::string target, std::string_view shownPath);
    SafeFolder(const SafeFolder&) = delete;
    SafeFolder& operator=(const SafeFolder&) = delete;
    ~SafeFolder();

    /// The local path of the folder that is being filled.
    const std::string& Draft() const { return draft_.path; }

    /// A new folder below; `name` may be a path whose folders are there. `shownPath` is for
    /// failures.
    void AddFolder(const std::string& name, std::string_view shownPath);
    /// A copy of an open file, with its mode and modification time; `watch` as of
    /// FileHandle::WriteFrom().
    void AddFile(const FileHandle& source, const std::string& name, std::string_view shownPath,
                 const std::function<void(std::uint64_t bytes)>& watch = {});

    /// Waits once until all of it is on the disk. Failure: DiskFull and the like, FileAlreadyExists
    /// when something has the name by now.
    void Commit();

  private:
    std::string target_;
    TemporaryEntry draft_;
    bool committed_ = false;
};

}  // namespace quillon
