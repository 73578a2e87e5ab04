#pragma once

#include <filesystem>
#include <string>

#include "platform/clock.h"
#include "platform/windows_path.h"

namespace quillon {

/// Keeps what would be deleted: files are moved to FOLDER/<stamp>/<drive or share>/<their path>.
/// The stamp is the time at which the first file comes, "2026-11-21_07-13-05", for all files of a
/// run.
class RemovedFiles {
  public:
    /// `folder` need not exist before the first file comes. The clock must outlive this object.
    RemovedFiles(std::filesystem::path folder, const Clock& clock)
        : folder_(std::move(folder)), clock_(clock) {}

    /// Where the file that `shown` means would be moved if it came now.
    std::filesystem::path PlaceFor(const WindowsPath& shown);

    /// Moves the file at the local path, which is what `shown` means, in here; the new local path.
    /// It keeps its modification time, also where it has to be copied to another file system. A
    /// file of the same path that came earlier stays. Failure: DiskFull, PermissionDenied and the
    /// like; the file is then where it was.
    std::filesystem::path Take(const std::string& local, const WindowsPath& shown);

    /// Removes what killed runs have left unfinished in here.
    void RemoveUnfinished() const;

  private:
    const std::filesystem::path& FolderOfRun();

    std::filesystem::path folder_;
    const Clock& clock_;
    std::filesystem::path ofRun_;  ///< empty before the first file comes
};

}  // namespace quillon
