// The C library's calls that open files: reading ones, or changing ones where they may make or
// empty a file.

#include <cstdio>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/types.h>

#include "tests/faults/preload/next_call.h"
#include "tests/faults/preload/open_mode.h"
#include "tests/faults/preload/trial_paths.h"
#include "tests/faults/preload/unsynced_files.h"

namespace quillon::faults {
namespace {

/// `open` carries the call out.
template <typename OpenCall>
int Open(const char* name, const std::string& path, int flags, const OpenCall& open) {
    const bool changing = TakesMode(flags) || (flags & O_TRUNC) != 0;
    const Order order = Meet(changing ? Kind::Changing : Kind::Reading, name, path);
    if (order.error != 0) return FailedWith<int>(order.error);
    if ((flags & O_TRUNC) != 0 && !path.empty()) UnsyncedFiles::Get().BeforeChange(path.c_str());
    return open();
}

FILE* OpenStream(const char* name, const char* path, const char* mode,
                 FILE* (*next)(const char*, const char*)) {
    const bool reading = mode[0] == 'r';
    const std::string known = PathOf(path);
    const Order order = Meet(reading ? Kind::Reading : Kind::Changing, name, known);
    if (order.error != 0) return FailedWith<FILE*>(order.error);
    if (mode[0] == 'w' && !known.empty()) UnsyncedFiles::Get().BeforeChange(known.c_str());
    return next(path, mode);
}

}  // namespace
}  // namespace quillon::faults

using namespace quillon::faults;  // NOLINT(google-build-using-namespace)

// The names are the C library's.
// NOLINTBEGIN(readability-identifier-naming,cert-dcl50-cpp)
extern "C" {

int open(const char* path, int flags, ...) {
    static const auto next = Next<decltype(open)>("open");
    QUILLON_MODE_AFTER_FLAGS(mode)
    return Open("open", PathOf(path), flags, [&] { return next(path, flags, mode); });
}

int open64(const char* path, int flags, ...) {
    static const auto next = Next<decltype(open64)>("open64");
    QUILLON_MODE_AFTER_FLAGS(mode)
    return Open("open64", PathOf(path), flags, [&] { return next(path, flags, mode); });
}

int openat(int folder, const char* path, int flags, ...) {
    static const auto next = Next<decltype(openat)>("openat");
    QUILLON_MODE_AFTER_FLAGS(mode)
    return Open("openat", PathAt(folder, path), flags,
                [&] { return next(folder, path, flags, mode); });
}

int openat64(int folder, const char* path, int flags, ...) {
    static const auto next = Next<decltype(openat64)>("openat64");
    QUILLON_MODE_AFTER_FLAGS(mode)
    return Open("openat64", PathAt(folder, path), flags,
                [&] { return next(folder, path, flags, mode); });
}

int creat(const char* path, mode_t mode) {
    return open(path, O_CREAT | O_WRONLY | O_TRUNC, mode);
}

int creat64(const char* path, mode_t mode) {
    return open64(path, O_CREAT | O_WRONLY | O_TRUNC, mode);
}

FILE* fopen(const char* path, const char* mode) {
    static const auto next = Next<FILE*(const char*, const char*)>("fopen");
    return OpenStream("fopen", path, mode, next);
}

FILE* fopen64(const char* path, const char* mode) {
    static const auto next = Next<FILE*(const char*, const char*)>("fopen64");
    return OpenStream("fopen64", path, mode, next);
}

}  // extern "C"
// NOLINTEND(readability-identifier-naming,cert-dcl50-cpp)
