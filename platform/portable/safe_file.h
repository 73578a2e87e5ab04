#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/portable/file_handle.h"
#include "platform/portable/temporary_entry.h"

namespace quillon {

/// A file that appears under its name whole or not at all: it is written under a temporary name in
/// the same folder, flushed to the disk and renamed in Commit(). Destroyed without Commit() it
/// leaves nothing behind. Every file that this program writes goes through here.
class SafeFile {
  public:
    /// What to do with a file that has the name already.
    enum class Existing {
        Replace,     ///< of a symbolic link the file that it leads to
        ReplaceOwn,  ///< a symbolic link is refused
        Refuse
    };

    /// `target` is the local path, `shownPath` the Windows path for failures. A replaced file's
    /// owner and rights stay. `rights` are those of a new file; `number` as of MakeTemporaryFile().
    /// Failure:
    /// PathNotFound without the folder, PermissionDenied for anything of that name that is no file
    /// or write-protected, FileAlreadyExists.
    SafeFile(const std::string& target, std::string_view shownPath, Existing existing,
             std::uint32_t rights = NewFileRights, unsigned number = 0);
    SafeFile(const SafeFile&) = delete;
    SafeFile& operator=(const SafeFile&) = delete;
    ~SafeFile();

    void Write(std::string_view bytes) {
        isSynced_ = false;
        draft_.handle.Write(bytes);
    }
    /// Writes all that is in another file from a place on; `watch` as of FileHandle::WriteFrom().
    void WriteFrom(const FileHandle& source, std::uint64_t from = 0,
                   const std::function<void(std::uint64_t bytes)>& watch = {}) {
        isSynced_ = false;
        draft_.handle.WriteFrom(source, from, watch);
    }
    /// The modification time that the file is to have.
    void SetModified(const FileTime& modified) { draft_.handle.SetModified(modified); }
    /// Waits until what was written is on the disk.
    void Sync();
    /// Failure: DiskFull and the like; then the name still belongs to what it did before.
    void Commit();

    /// The parts of Commit(), for files that are committed together: Sync() of each, or where
    /// FlushTakesAll() SyncFileSystem() of one for all, TakeName() of each, SyncFolder() of each
    /// folder.
    void SyncFileSystem() const;
    void TakeName();
    /// Where the file is, a local path with the slash at its end.
    std::string Folder() const;

  private:
    TemporaryEntry Create(std::uint32_t rights, unsigned number);

    std::string target_;
    std::string shownPath_;
    Existing existing_;
    TemporaryEntry draft_;
    bool isSynced_ = false, committed_ = false;
};

}  // namespace quillon
