#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/types.h>

namespace quillon::counts {

/// What a file is to the program, as far as its path tells.
enum class Place : std::size_t {
    Database,  ///< "x.mdb"
    Journal,   ///< "x.mdb.journal"
    Snapshot,  ///< any other file beside a database, "x.mdb.playlists"
    Playlist,
    Backup,  ///< a dated copy, or a file in one
    Music,
    Log,
    Temporary,  ///< a file that has no name any more, so it goes with the process
    Other,
};
constexpr std::size_t PlaceCount = 9;

Place PlaceOf(const std::string& path);

/// While one lives, what this thread does is the library's own and not counted.
class Uncounted {
  public:
    Uncounted();
    Uncounted(const Uncounted&) = delete;
    Uncounted& operator=(const Uncounted&) = delete;
    ~Uncounted();
    /// Whether the call in hand comes from this library.
    static bool IsNested();

  private:
    bool before_;
};

void CountAllocation(std::size_t bytes);
void CountSync();
void CountOpened(int folder, const char* path, int flags);
void CountOpenedFolder();

/// Bytes that have been written to a file; `offset` is -1 where it is not known.
void CountWritten(int descriptor, ssize_t bytes, off_t offset);
/// What was written under a temporary name belongs to the place of the name that it gets.
void CountRenamed(const std::string& from, const std::string& to);
/// The absolute path of what has this name now, for the call above; "" where there is none.
std::string RealPath(int folder, const char* path);

}  // namespace quillon::counts
