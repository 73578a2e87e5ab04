#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/files.h"
#include "platform/portable/folder_stream.h"
#include "platform/portable/local_time.h"
#include "platform/portable/path_resolver.h"
#include "platform/window.h"

namespace quillon {

/// Takes messages for the person who reads the log.
using NoteSink = std::function<void(LogKind kind, const std::string& message)>;

/// Lists local folders as Windows would show them. What Windows could not show (names that it
/// cannot hold, devices, a folder inside itself) is left out. What could not be looked at is listed
/// as unseen, and so is a file whose name another one has in other letter case. Each such entry is
/// noted once in this object's life: what was left out as information, what was not seen as an
/// error.
class FolderLister {
  public:
    explicit FolderLister(NoteSink note) : note_(std::move(note)) {}

    /// From now on listings remove what killed runs have left unfinished in the folder.
    void ClearUnfinished() { clearsUnfinished_ = true; }

    /// Folders and files directly inside the folder at `local`, which is what `shown` means below
    /// the mapped folder `localRoot`; in name order. Failure: PathNotFound, PermissionDenied.
    Listing<FolderEntry> SubFolders(const WindowsPath& shown, const std::string& local,
                                    const std::string& localRoot);
    Listing<FileEntry> FilesIn(const WindowsPath& shown, const std::string& local);

    /// The names in the folder at `local`; none where it cannot be listed.
    static FolderNames NamesIn(const std::string& local);

    /// Opens a file of the folder whose files were listed last, where it has the name by which it
    /// was listed: the system need not look for the folder again. -1 with errno set where it cannot
    /// be opened; ENOENT or ENOTDIR where it may still be found in another way.
    int OpenListed(std::string_view path);

    /// A folder has got another name, or is gone.
    void ForgetListed() { listed_ = FolderStream(); }

    /// A file's entry from its Windows path and what the operating system tells about it.
    FileEntry MakeFileEntry(std::string path, std::string name, const FileFacts& facts);

  private:
    /// Which entries the operating system's own kind rules out without a further look.
    enum class Wanted { Folders, Files };
    template <typename Entry, typename Visit>
    FolderStream ForEach(const WindowsPath& shown, const std::string& local, Wanted wanted,
                         Listing<Entry>& list, Visit visit);
    void LeaveOut(std::string_view reason, const WindowsPath& folder, std::string_view name);
    void NoteUnseen(int error, const std::string& path);
    void LeaveOutTwins(Listing<FileEntry>& list);

    NoteSink note_;
    bool clearsUnfinished_ = false;
    std::unordered_set<std::string> noted_;
    LocalTime localTime_;
    FolderStream listed_;      ///< the folder whose files were listed last
    std::string listedShown_;  ///< its Windows path with a backslash at the end
    std::string openName_;
};

}  // namespace quillon
