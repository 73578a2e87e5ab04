// The C library's calls that change what is in files, and those that flush it to the disk.

#include <fcntl.h>
#include <string>
#include <sys/sendfile.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

#include "tests/faults/preload/next_call.h"
#include "tests/faults/preload/trial_paths.h"
#include "tests/faults/preload/unsynced_files.h"

namespace quillon::faults {
namespace {

/// A call that writes at most `size` bytes: `write` does that with another number of them.
template <typename WriteCall>
ssize_t Write(const char* name, int descriptor, std::size_t size, const WriteCall& write) {
    return Transfer(Kind::Changing, name, PathOf(descriptor), size, [&](std::size_t part) {
        UnsyncedFiles::Get().BeforeChange(descriptor);
        return write(part);
    });
}

/// Any other change of a file's content.
template <typename ChangeCall>
int Change(const char* name, int descriptor, const ChangeCall& change) {
    const Order order = Meet(Kind::Changing, name, PathOf(descriptor));
    if (order.error != 0) return FailedWith<int>(order.error);
    UnsyncedFiles::Get().BeforeChange(descriptor);
    return change();
}

int Flush(const char* name, int descriptor, int (*next)(int)) {
    const Order order = Meet(Kind::Changing, name, PathOf(descriptor));
    if (order.error != 0) return FailedWith<int>(order.error);
    UnsyncedFiles::Get().Flushed(descriptor);
    return next(descriptor);
}

}  // namespace
}  // namespace quillon::faults

using namespace quillon::faults;  // NOLINT(google-build-using-namespace)

// The names are the C library's.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" {

ssize_t write(int descriptor, const void* bytes, size_t size) {
    static const auto next = Next<decltype(write)>("write");
    return Write("write", descriptor, size,
                 [&](size_t part) { return next(descriptor, bytes, part); });
}

ssize_t writev(int descriptor, const iovec* pieces, int count) {
    static const auto next = Next<decltype(writev)>("writev");
    return Write("writev", descriptor, 0,
                 [&](size_t /*part*/) { return next(descriptor, pieces, count); });
}

ssize_t pwrite(int descriptor, const void* bytes, size_t size, off_t position) {
    static const auto next = Next<decltype(pwrite)>("pwrite");
    return Write("pwrite", descriptor, size,
                 [&](size_t part) { return next(descriptor, bytes, part, position); });
}

ssize_t pwrite64(int descriptor, const void* bytes, size_t size, off64_t position) {
    static const auto next = Next<decltype(pwrite64)>("pwrite64");
    return Write("pwrite64", descriptor, size,
                 [&](size_t part) { return next(descriptor, bytes, part, position); });
}

ssize_t copy_file_range(int from, off64_t* fromPosition, int to, off64_t* toPosition, size_t size,
                        unsigned flags) {
    static const auto next = Next<decltype(copy_file_range)>("copy_file_range");
    return Write("copy_file_range", to, size, [&](size_t part) {
        return next(from, fromPosition, to, toPosition, part, flags);
    });
}

ssize_t sendfile(int to, int from, off_t* position, size_t size) noexcept {
    static const auto next = Next<decltype(sendfile)>("sendfile");
    return Write("sendfile", to, size, [&](size_t part) { return next(to, from, position, part); });
}

ssize_t sendfile64(int to, int from, off64_t* position, size_t size) noexcept {
    static const auto next = Next<decltype(sendfile64)>("sendfile64");
    return Write("sendfile64", to, size,
                 [&](size_t part) { return next(to, from, position, part); });
}

int ftruncate(int descriptor, off_t size) noexcept {
    static const auto next = Next<decltype(ftruncate)>("ftruncate");
    return Change("ftruncate", descriptor, [&] { return next(descriptor, size); });
}

int ftruncate64(int descriptor, off64_t size) noexcept {
    static const auto next = Next<decltype(ftruncate64)>("ftruncate64");
    return Change("ftruncate64", descriptor, [&] { return next(descriptor, size); });
}

int truncate(const char* path, off_t size) noexcept {
    static const auto next = Next<decltype(truncate)>("truncate");
    const Order order = Meet(Kind::Changing, "truncate", PathOf(path));
    if (order.error != 0) return FailedWith<int>(order.error);
    if (!PathOf(path).empty()) UnsyncedFiles::Get().BeforeChange(path);
    return next(path, size);
}

int fallocate(int descriptor, int mode, off_t position, off_t size) {
    static const auto next = Next<decltype(fallocate)>("fallocate");
    return Change("fallocate", descriptor, [&] { return next(descriptor, mode, position, size); });
}

int fallocate64(int descriptor, int mode, off64_t position, off64_t size) {
    static const auto next = Next<decltype(fallocate64)>("fallocate64");
    return Change("fallocate64", descriptor,
                  [&] { return next(descriptor, mode, position, size); });
}

int fsync(int descriptor) {
    static const auto next = Next<decltype(fsync)>("fsync");
    return Flush("fsync", descriptor, next);
}

int fdatasync(int descriptor) {
    static const auto next = Next<decltype(fdatasync)>("fdatasync");
    return Flush("fdatasync", descriptor, next);
}

int syncfs(int descriptor) noexcept {
    static const auto next = Next<decltype(syncfs)>("syncfs");
    const Order order = Meet(Kind::Changing, "syncfs", PathOf(descriptor));
    if (order.error != 0) return FailedWith<int>(order.error);
    UnsyncedFiles::Get().AllFlushed();
    return next(descriptor);
}

}  // extern "C"
// NOLINTEND(readability-identifier-naming)
