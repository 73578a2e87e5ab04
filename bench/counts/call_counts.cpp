// What is counted, and the file that tells it at the program's end.

#include "bench/counts/call_counts.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string_view>
#include <unistd.h>

namespace quillon::counts {
namespace {

constexpr std::array<const char*, PlaceCount> PlaceNames = {
    "database", "journal", "snapshot", "playlist", "backup", "music", "log", "temporary", "other"};
constexpr off_t PageSize = 4096;

// Counted before anything of this library is ready, and by all threads.
std::atomic<std::uint64_t> allocations, allocatedBytes, syncs, openedFolders;
std::array<std::atomic<std::uint64_t>, PlaceCount> opened;
thread_local bool nested = false;

struct Written {
    std::uint64_t bytes = 0;
    std::set<off_t> pages;  ///< of a database
};

/// Bytes and pages by path: a place is only known by the last name.
struct Files {
    std::mutex mutex;
    std::map<std::string, Written> byPath;
};

Files& TheFiles() {
    // Never destroyed: the program may write files until its very end.
    static Files* const files = std::make_unique<Files>().release();
    return *files;
}

bool EndsIn(const std::string& path, std::string_view end) {
    return std::string_view(path).ends_with(end);
}

bool Holds(const std::string& path, std::string_view part) {
    return path.find(part) != std::string::npos;
}

std::string PathOf(int descriptor) {
    std::array<char, PATH_MAX> target{};
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t length = readlink(link.c_str(), target.data(), target.size());
    return length < 0 ? "" : std::string(target.data(), static_cast<std::size_t>(length));
}

/// A pipe or a device is no file that anybody keeps.
bool IsFile(const std::string& path) {
    return path.starts_with('/') && !path.starts_with("/dev/") && !path.starts_with("/proc/");
}

std::string NameIn(Place place, std::string_view what) {
    std::string name = PlaceNames[static_cast<std::size_t>(place)];
    return (name += '.') += what;
}

void TellFiles(std::ostream& out) {
    std::array<Written, PlaceCount> sums;
    std::array<std::uint64_t, PlaceCount> files{};
    for (const auto& [path, written] : TheFiles().byPath) {
        const auto place = static_cast<std::size_t>(PlaceOf(path));
        sums[place].bytes += written.bytes;
        sums[place].pages.insert(written.pages.begin(), written.pages.end());
        ++files[place];
    }
    for (std::size_t i = 0; i < PlaceCount; ++i) {
        const auto place = static_cast<Place>(i);
        out << NameIn(place, "opened ") << opened[i] << '\n'
            << NameIn(place, "written-files ") << files[i] << '\n'
            << NameIn(place, "written-bytes ") << sums[i].bytes << '\n';
    }
    out << NameIn(Place::Database, "written-pages ")
        << sums[static_cast<std::size_t>(Place::Database)].pages.size() << '\n';
}

/// The end of the program is the end of counting.
__attribute__((destructor)) void Tell() {
    const Uncounted own;
    const char* const name = std::getenv("QUILLON_COUNTS");
    if (name == nullptr) return;
    std::ofstream out(name);
    out << "allocations " << allocations << "\nallocated-bytes " << allocatedBytes << "\nsyncs "
        << syncs << "\nopened-folders " << openedFolders << '\n';
    TellFiles(out);
}

}  // namespace

Place PlaceOf(const std::string& path) {
    if (EndsIn(path, " (deleted)")) return Place::Temporary;
    if (Holds(path, "_Copy Dated_")) return Place::Backup;
    if (EndsIn(path, ".mdb")) return Place::Database;
    if (EndsIn(path, ".mdb.journal")) return Place::Journal;
    if (Holds(path, ".mdb.")) return Place::Snapshot;
    if (EndsIn(path, ".pla") || EndsIn(path, ".m3u")) return Place::Playlist;
    if (EndsIn(path, ".mp3")) return Place::Music;
    if (EndsIn(path, ".log")) return Place::Log;
    return Place::Other;
}

Uncounted::Uncounted() : before_(nested) {
    nested = true;
}

Uncounted::~Uncounted() {
    nested = before_;
}

bool Uncounted::IsNested() {
    return nested;
}

void CountAllocation(std::size_t bytes) {
    if (nested) return;
    ++allocations;
    allocatedBytes += bytes;
}

void CountSync() {
    ++syncs;
}

void CountOpened(int folder, const char* path, int flags) {
    if (nested) return;
    const int error = errno;
    const Uncounted own;
    if ((flags & O_DIRECTORY) != 0) {
        ++openedFolders;
    } else if (folder != AT_FDCWD || IsFile(path) || path[0] != '/') {
        ++opened[static_cast<std::size_t>(PlaceOf(path))];
    }
    errno = error;
}

void CountOpenedFolder() {
    ++openedFolders;
}

void CountWritten(int descriptor, ssize_t bytes, off_t offset) {
    if (nested || bytes <= 0) return;
    const int error = errno;
    const Uncounted own;
    const std::string path = PathOf(descriptor);
    if (IsFile(path)) {
        const std::lock_guard lock(TheFiles().mutex);
        Written& written = TheFiles().byPath[path];
        written.bytes += static_cast<std::uint64_t>(bytes);
        if (offset >= 0 && PlaceOf(path) == Place::Database) {
            for (off_t page = offset / PageSize; page * PageSize < offset + bytes; ++page)
                written.pages.insert(page);
        }
    }
    errno = error;
}

std::string RealPath(int folder, const char* path) {
    const int error = errno;
    const Uncounted own;
    std::string known = path;
    if (known[0] != '/' && folder != AT_FDCWD) known.insert(0, PathOf(folder) + '/');
    std::array<char, PATH_MAX> real{};
    const bool found = realpath(known.c_str(), real.data()) != nullptr;
    errno = error;
    return found ? real.data() : "";
}

void CountRenamed(const std::string& from, const std::string& to) {
    const Uncounted own;
    const std::lock_guard lock(TheFiles().mutex);
    auto& byPath = TheFiles().byPath;
    std::map<std::string, Written> moved;
    for (auto file = byPath.lower_bound(from);
         file != byPath.end() && file->first.starts_with(from);) {
        const std::string rest = file->first.substr(from.size());
        if (rest.empty() || rest.front() == '/') {
            moved.insert({to + rest, std::move(file->second)});
            file = byPath.erase(file);
        } else {
            ++file;
        }
    }
    for (auto& [path, written] : moved) {
        Written& there = byPath[path];
        there.bytes += written.bytes;
        there.pages.merge(written.pages);
    }
}

}  // namespace quillon::counts
