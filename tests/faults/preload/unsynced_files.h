#pragma once

#include <ctime>
#include <map>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace quillon::faults {

/// What a power cut would take: for each file that was changed since it was last flushed, its
/// content of then. Names are not part of it: folders are taken to be on the disk at once and in
/// order, as journalling file systems have them.
class UnsyncedFiles {
  public:
    static UnsyncedFiles& Get();

    /// Keeps a file's content, unless an older one is kept already. Nothing where no cut is
    /// planned.
    void BeforeChange(int descriptor);
    void BeforeChange(const char* path);
    /// The file as it is now is on the disk.
    void Flushed(int descriptor);
    /// So are all files.
    void AllFlushed();
    /// Gives each file the content that is on the disk.
    void Lose();

  private:
    struct Kept {
        /// Open for reading and writing: the file may have another name by now, or none.
        int descriptor;
        std::vector<char> content;
        timespec modified;
    };
    std::map<std::pair<dev_t, ino_t>, Kept> files_;
};

}  // namespace quillon::faults
