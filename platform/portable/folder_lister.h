#pragma once

#include <cstdint>
#include <ctime>
#include <functional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unordered_set>
#include <vector>

#include "platform/files.h"
#include "platform/portable/local_time.h"
#include "platform/portable/path_resolver.h"

namespace quillon {

/// Takes messages for the person who reads the log.
using NoteSink = std::function<void(const std::string& message)>;

/// Lists local folders as Windows would show them. What Windows could not show (names that it
/// cannot hold, links that lead nowhere, devices, a folder inside itself) is left out; each such
/// entry is noted once in this object's life.
class FolderLister {
  public:
    explicit FolderLister(NoteSink note) : note_(std::move(note)) {}

    /// From now on listings remove what killed runs have left unfinished in the folder.
    void ClearUnfinished() { clearsUnfinished_ = true; }

    /// Folders and files directly inside the folder at `local`, which is what `shown` means below
    /// the mapped folder `localRoot`; in name order. Failure: PathNotFound, PermissionDenied.
    std::vector<FolderEntry> SubFolders(const WindowsPath& shown, const std::string& local,
                                        const std::string& localRoot);
    std::vector<FileEntry> FilesIn(const WindowsPath& shown, const std::string& local);

    /// A file's entry from its Windows path and what the operating system tells about it.
    FileEntry MakeFileEntry(std::string path, std::string name, const struct stat& facts);

  private:
    /// Which entries the operating system's own kind rules out without a further look.
    enum class Wanted { Folders, Files };
    template <typename Visit>
    void ForEach(const WindowsPath& shown, const std::string& local, Wanted wanted, Visit visit);
    bool ReadFacts(int folder, const WindowsPath& shown, const char* name, struct stat& facts);
    void Note(std::string_view reason, const WindowsPath& folder, std::string_view name);

    NoteSink note_;
    bool clearsUnfinished_ = false;
    std::unordered_set<std::string> noted_;
    LocalTime localTime_;
};

}  // namespace quillon
