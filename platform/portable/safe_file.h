#pragma once

#include <cstddef>
#include <ctime>
#include <string>
#include <string_view>
#include <sys/types.h>

#include "platform/portable/file_handle.h"

namespace quillon {

/// A file that appears under its name whole or not at all: it is written under a temporary name in
/// the same folder, flushed to the disk and renamed in Commit(). Destroyed without Commit() it
/// leaves nothing behind. Every file that this program writes goes through here.
class SafeFile {
  public:
    /// What to do with a file that has the name already.
    enum class Existing { Replace, Refuse };

    /// `target` is the local path, `shownPath` the Windows path for failures. A symbolic link stays
    /// and the file it leads to is replaced; a replaced file's owner and mode stay. `mode` is that
    /// of a new file, before the process's mask. Failure: PathNotFound without the folder,
    /// PermissionDenied for a folder or a write-protected file of that name, FileAlreadyExists.
    SafeFile(const std::string& target, std::string_view shownPath, Existing existing,
             mode_t mode = 0666);
    SafeFile(const SafeFile&) = delete;
    SafeFile& operator=(const SafeFile&) = delete;
    ~SafeFile();

    void Write(std::string_view bytes) { file_.Write(bytes); }
    /// Writes all that is in another file.
    void WriteFrom(const FileHandle& source);
    /// The modification time that the file is to have.
    void SetModified(const std::timespec& modified);
    /// Waits until what was written is on the disk.
    void Sync();
    /// Failure: DiskFull and the like; then the name still belongs to what it did before.
    void Commit();

    /// Whether a name is one of those that unfinished files have.
    static bool IsTemporaryName(std::string_view name);

    /// Removes the unfinished files that killed runs have left in a folder (local path); those that
    /// a running process still writes stay. The number of files removed.
    static std::size_t RemoveAbandoned(const std::string& folder);

  private:
    FileHandle Create(mode_t mode);
    void Rename();

    std::string target_;
    std::string shownPath_;
    Existing existing_;
    std::string temporary_;
    FileHandle file_;
    bool committed_ = false;
};

}  // namespace quillon
