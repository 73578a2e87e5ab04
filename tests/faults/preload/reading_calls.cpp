// The C library's calls that read files and folders. Each stands in front of the library's own.

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include "tests/faults/preload/next_call.h"
#include "tests/faults/preload/trial_paths.h"

namespace quillon::faults {
namespace {

constexpr Kind Reading = Kind::Reading;

/// A folder's path, or that of the entry that the call would give.
template <typename Entry>
std::string EntryPath(DIR* folder, const Entry* entry) {
    const std::string path = PathOf(dirfd(folder));
    return path.empty() || entry == nullptr ? path : path + '/' + entry->d_name;
}

/// Reads the entry first, so that the record can name it; one that is to fail is not handed on.
template <typename Entry>
Entry* ReadEntry(const char* name, DIR* folder, Entry* (*next)(DIR*)) {
    Entry* const entry = next(folder);
    const Order order = Meet(Reading, name, EntryPath(folder, entry));
    return order.error != 0 ? FailedWith<Entry*>(order.error) : entry;
}

bool IsLock(int command) {
    return command == F_SETLK || command == F_SETLKW || command == F_GETLK ||
           command == F_OFD_SETLK || command == F_OFD_SETLKW || command == F_OFD_GETLK;
}

}  // namespace
}  // namespace quillon::faults

using namespace quillon::faults;  // NOLINT(google-build-using-namespace)

// The names are the C library's.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" {

DIR* opendir(const char* path) {
    static const auto next = Next<decltype(opendir)>("opendir");
    return Carry(Reading, "opendir", PathOf(path), next, path);
}

DIR* fdopendir(int descriptor) {
    static const auto next = Next<decltype(fdopendir)>("fdopendir");
    return Carry(Reading, "fdopendir", PathOf(descriptor), next, descriptor);
}

dirent* readdir(DIR* folder) {
    static const auto next = Next<decltype(readdir)>("readdir");
    return ReadEntry("readdir", folder, next);
}

dirent64* readdir64(DIR* folder) {
    static const auto next = Next<decltype(readdir64)>("readdir64");
    return ReadEntry("readdir64", folder, next);
}

int closedir(DIR* folder) {
    static const auto next = Next<decltype(closedir)>("closedir");
    Note("closedir", PathOf(dirfd(folder)));
    return next(folder);
}

int stat(const char* path, struct stat* facts) noexcept {
    static const auto next = Next<int(const char*, struct stat*)>("stat");
    return Carry(Reading, "stat", PathOf(path), next, path, facts);
}

int stat64(const char* path, struct stat64* facts) noexcept {
    static const auto next = Next<int(const char*, struct stat64*)>("stat64");
    return Carry(Reading, "stat64", PathOf(path), next, path, facts);
}

int lstat(const char* path, struct stat* facts) noexcept {
    static const auto next = Next<decltype(lstat)>("lstat");
    return Carry(Reading, "lstat", PathOf(path), next, path, facts);
}

int lstat64(const char* path, struct stat64* facts) noexcept {
    static const auto next = Next<decltype(lstat64)>("lstat64");
    return Carry(Reading, "lstat64", PathOf(path), next, path, facts);
}

int fstat(int descriptor, struct stat* facts) noexcept {
    static const auto next = Next<decltype(fstat)>("fstat");
    return Carry(Reading, "fstat", PathOf(descriptor), next, descriptor, facts);
}

int fstat64(int descriptor, struct stat64* facts) noexcept {
    static const auto next = Next<decltype(fstat64)>("fstat64");
    return Carry(Reading, "fstat64", PathOf(descriptor), next, descriptor, facts);
}

int fstatat(int folder, const char* path, struct stat* facts, int flags) noexcept {
    static const auto next = Next<decltype(fstatat)>("fstatat");
    return Carry(Reading, "fstatat", PathAt(folder, path), next, folder, path, facts, flags);
}

int fstatat64(int folder, const char* path, struct stat64* facts, int flags) noexcept {
    static const auto next = Next<decltype(fstatat64)>("fstatat64");
    return Carry(Reading, "fstatat64", PathAt(folder, path), next, folder, path, facts, flags);
}

int statx(int folder, const char* path, int flags, unsigned mask, struct statx* facts) noexcept {
    static const auto next = Next<int(int, const char*, int, unsigned, struct statx*)>("statx");
    return Carry(Reading, "statx", PathAt(folder, path), next, folder, path, flags, mask, facts);
}

int access(const char* path, int mode) noexcept {
    static const auto next = Next<decltype(access)>("access");
    return Carry(Reading, "access", PathOf(path), next, path, mode);
}

int eaccess(const char* path, int mode) noexcept {
    static const auto next = Next<decltype(eaccess)>("eaccess");
    return Carry(Reading, "eaccess", PathOf(path), next, path, mode);
}

int euidaccess(const char* path, int mode) noexcept {
    static const auto next = Next<decltype(euidaccess)>("euidaccess");
    return Carry(Reading, "euidaccess", PathOf(path), next, path, mode);
}

int faccessat(int folder, const char* path, int mode, int flags) noexcept {
    static const auto next = Next<decltype(faccessat)>("faccessat");
    return Carry(Reading, "faccessat", PathAt(folder, path), next, folder, path, mode, flags);
}

ssize_t readlink(const char* path, char* target, size_t size) noexcept {
    static const auto next = Next<decltype(readlink)>("readlink");
    return Carry(Reading, "readlink", PathOf(path), next, path, target, size);
}

ssize_t readlinkat(int folder, const char* path, char* target, size_t size) noexcept {
    static const auto next = Next<decltype(readlinkat)>("readlinkat");
    return Carry(Reading, "readlinkat", PathAt(folder, path), next, folder, path, target, size);
}

char* realpath(const char* path, char* resolved) noexcept {
    static const auto next = Next<decltype(realpath)>("realpath");
    return Carry(Reading, "realpath", PathOf(path), next, path, resolved);
}

char* canonicalize_file_name(const char* path) noexcept {
    static const auto next = Next<decltype(canonicalize_file_name)>("canonicalize_file_name");
    return Carry(Reading, "canonicalize_file_name", PathOf(path), next, path);
}

ssize_t read(int descriptor, void* bytes, size_t size) {
    static const auto next = Next<decltype(read)>("read");
    return Transfer(Reading, "read", PathOf(descriptor), size,
                    [&](size_t part) { return next(descriptor, bytes, part); });
}

ssize_t readv(int descriptor, const iovec* pieces, int count) {
    static const auto next = Next<decltype(readv)>("readv");
    return Carry(Reading, "readv", PathOf(descriptor), next, descriptor, pieces, count);
}

ssize_t pread(int descriptor, void* bytes, size_t size, off_t position) {
    static const auto next = Next<decltype(pread)>("pread");
    return Transfer(Reading, "pread", PathOf(descriptor), size,
                    [&](size_t part) { return next(descriptor, bytes, part, position); });
}

ssize_t pread64(int descriptor, void* bytes, size_t size, off64_t position) {
    static const auto next = Next<decltype(pread64)>("pread64");
    return Transfer(Reading, "pread64", PathOf(descriptor), size,
                    [&](size_t part) { return next(descriptor, bytes, part, position); });
}

int flock(int descriptor, int operation) noexcept {
    static const auto next = Next<decltype(flock)>("flock");
    return Carry(Reading, "flock", PathOf(descriptor), next, descriptor, operation);
}

/// Locks only: the other commands concern this process alone.
int fcntl(int descriptor, int command, ...) {  // NOLINT(cert-dcl50-cpp)
    static const auto next = Next<int(int, int, ...)>("fcntl");
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    const std::string path = IsLock(command) ? PathOf(descriptor) : "";
    const Order order = Meet(Reading, "fcntl", path);
    return order.error != 0 ? FailedWith<int>(order.error) : next(descriptor, command, argument);
}

int fcntl64(int descriptor, int command, ...) {  // NOLINT(cert-dcl50-cpp)
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return fcntl(descriptor, command, argument);
}

}  // extern "C"
// NOLINTEND(readability-identifier-naming)
