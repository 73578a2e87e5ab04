// Stands in front of the C library's calls that are counted; each does what it always does.

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <malloc.h>
#include <string>
#include <sys/uio.h>
#include <unistd.h>

#include "bench/counts/call_counts.h"
#include "tests/faults/preload/next_call.h"
#include "tests/faults/preload/open_mode.h"

using namespace quillon::counts;  // NOLINT(google-build-using-namespace)
using quillon::faults::Next;

namespace {

/// What a call that opens something says, counted where it succeeded.
template <typename Result>
Result Opened(Result result, int folder, const char* path, int flags) {
    if (result >= Result{}) CountOpened(folder, path, flags);
    return result;
}

std::FILE* OpenedStream(std::FILE* stream, const char* path) {
    if (stream != nullptr) CountOpened(AT_FDCWD, path, 0);
    return stream;
}

DIR* OpenedFolder(DIR* folder) {
    if (folder != nullptr && !Uncounted::IsNested()) CountOpenedFolder();
    return folder;
}

ssize_t Wrote(int descriptor, ssize_t bytes, off_t offset = -1) {
    CountWritten(descriptor, bytes, offset);
    return bytes;
}

template <typename Rename>
int Renamed(int oldFolder, const char* from, int newFolder, const char* to, const Rename& rename) {
    const std::string before = RealPath(oldFolder, from);
    const int result = rename();
    if (result == 0) CountRenamed(before, RealPath(newFolder, to));
    return result;
}

}  // namespace

// The names are the C library's. Its allocator is called by its other names: to look for one would
// allocate.
// NOLINTBEGIN(readability-identifier-naming,bugprone-reserved-identifier,cert-dcl50-cpp)
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

void* malloc(std::size_t size) {
    CountAllocation(size);
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    CountAllocation(count * size);
    return __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
    CountAllocation(size);
    return __libc_realloc(memory, size);
}

void* memalign(std::size_t alignment, std::size_t size) {
    CountAllocation(size);
    return __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    *memory = memalign(alignment, size);
    return *memory == nullptr ? ENOMEM : 0;
}

int fsync(int descriptor) {
    static const auto next = Next<decltype(fsync)>("fsync");
    CountSync();
    return next(descriptor);
}

int fdatasync(int descriptor) {
    static const auto next = Next<decltype(fdatasync)>("fdatasync");
    CountSync();
    return next(descriptor);
}

int syncfs(int descriptor) noexcept {
    static const auto next = Next<int(int)>("syncfs");
    CountSync();
    return next(descriptor);
}

void sync() noexcept {
    static const auto next = Next<void()>("sync");
    CountSync();
    next();
}

int open(const char* path, int flags, ...) {
    static const auto next = Next<decltype(open)>("open");
    QUILLON_MODE_AFTER_FLAGS(mode)
    return Opened(next(path, flags, mode), AT_FDCWD, path, flags);
}

int open64(const char* path, int flags, ...) {
    static const auto next = Next<decltype(open64)>("open64");
    QUILLON_MODE_AFTER_FLAGS(mode)
    return Opened(next(path, flags, mode), AT_FDCWD, path, flags);
}

int openat(int folder, const char* path, int flags, ...) {
    static const auto next = Next<decltype(openat)>("openat");
    QUILLON_MODE_AFTER_FLAGS(mode)
    return Opened(next(folder, path, flags, mode), folder, path, flags);
}

int openat64(int folder, const char* path, int flags, ...) {
    static const auto next = Next<decltype(openat64)>("openat64");
    QUILLON_MODE_AFTER_FLAGS(mode)
    return Opened(next(folder, path, flags, mode), folder, path, flags);
}

int creat(const char* path, mode_t mode) {
    return open(path, O_CREAT | O_WRONLY | O_TRUNC, mode);
}

int creat64(const char* path, mode_t mode) {
    return open64(path, O_CREAT | O_WRONLY | O_TRUNC, mode);
}

std::FILE* fopen(const char* path, const char* mode) {
    static const auto next = Next<std::FILE*(const char*, const char*)>("fopen");
    return OpenedStream(next(path, mode), path);
}

std::FILE* fopen64(const char* path, const char* mode) {
    static const auto next = Next<std::FILE*(const char*, const char*)>("fopen64");
    return OpenedStream(next(path, mode), path);
}

DIR* opendir(const char* path) {
    static const auto next = Next<DIR*(const char*)>("opendir");
    return OpenedFolder(next(path));
}

ssize_t write(int descriptor, const void* bytes, std::size_t size) {
    static const auto next = Next<decltype(write)>("write");
    return Wrote(descriptor, next(descriptor, bytes, size));
}

ssize_t pwrite(int descriptor, const void* bytes, std::size_t size, off_t offset) {
    static const auto next = Next<decltype(pwrite)>("pwrite");
    return Wrote(descriptor, next(descriptor, bytes, size, offset), offset);
}

ssize_t pwrite64(int descriptor, const void* bytes, std::size_t size, off64_t offset) {
    static const auto next = Next<decltype(pwrite64)>("pwrite64");
    return Wrote(descriptor, next(descriptor, bytes, size, offset), offset);
}

ssize_t writev(int descriptor, const iovec* parts, int count) {
    static const auto next = Next<decltype(writev)>("writev");
    return Wrote(descriptor, next(descriptor, parts, count));
}

ssize_t pwritev(int descriptor, const iovec* parts, int count, off_t offset) {
    static const auto next = Next<decltype(pwritev)>("pwritev");
    return Wrote(descriptor, next(descriptor, parts, count, offset), offset);
}

ssize_t pwritev64(int descriptor, const iovec* parts, int count, off64_t offset) {
    static const auto next = Next<decltype(pwritev64)>("pwritev64");
    return Wrote(descriptor, next(descriptor, parts, count, offset), offset);
}

ssize_t copy_file_range(int from, off64_t* fromOffset, int to, off64_t* toOffset, std::size_t size,
                        unsigned flags) {
    static const auto next = Next<decltype(copy_file_range)>("copy_file_range");
    const off_t offset = toOffset == nullptr ? -1 : *toOffset;
    return Wrote(to, next(from, fromOffset, to, toOffset, size, flags), offset);
}

int rename(const char* from, const char* to) noexcept {
    static const auto next = Next<int(const char*, const char*)>("rename");
    return Renamed(AT_FDCWD, from, AT_FDCWD, to, [&] { return next(from, to); });
}

int renameat(int oldFolder, const char* from, int newFolder, const char* to) noexcept {
    static const auto next = Next<int(int, const char*, int, const char*)>("renameat");
    return Renamed(oldFolder, from, newFolder, to,
                   [&] { return next(oldFolder, from, newFolder, to); });
}

int renameat2(int oldFolder, const char* from, int newFolder, const char* to,
              unsigned flags) noexcept {
    static const auto next = Next<int(int, const char*, int, const char*, unsigned)>("renameat2");
    return Renamed(oldFolder, from, newFolder, to,
                   [&] { return next(oldFolder, from, newFolder, to, flags); });
}

}  // extern "C"
// NOLINTEND(readability-identifier-naming,bugprone-reserved-identifier,cert-dcl50-cpp)
