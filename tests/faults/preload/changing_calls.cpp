// The C library's calls that change names, folders and what is noted about files.

#include <cstdio>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/types.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "tests/faults/preload/next_call.h"
#include "tests/faults/preload/trial_paths.h"

using namespace quillon::faults;  // NOLINT(google-build-using-namespace)

namespace {
constexpr Kind Changing = Kind::Changing;
}

// The names are the C library's.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" {

int rename(const char* from, const char* to) noexcept {
    static const auto next = Next<decltype(rename)>("rename");
    return Carry(Changing, "rename", Between(PathOf(from), PathOf(to)), next, from, to);
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    static const auto next = Next<decltype(renameat)>("renameat");
    return Carry(Changing, "renameat", Between(PathAt(fromFolder, from), PathAt(toFolder, to)),
                 next, fromFolder, from, toFolder, to);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
              unsigned flags) noexcept {
    static const auto next = Next<decltype(renameat2)>("renameat2");
    return Carry(Changing, "renameat2", Between(PathAt(fromFolder, from), PathAt(toFolder, to)),
                 next, fromFolder, from, toFolder, to, flags);
}

int link(const char* from, const char* to) noexcept {
    static const auto next = Next<decltype(link)>("link");
    return Carry(Changing, "link", Between(PathOf(from), PathOf(to)), next, from, to);
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
    static const auto next = Next<decltype(linkat)>("linkat");
    return Carry(Changing, "linkat", Between(PathAt(fromFolder, from), PathAt(toFolder, to)), next,
                 fromFolder, from, toFolder, to, flags);
}

int symlink(const char* target, const char* path) noexcept {
    static const auto next = Next<decltype(symlink)>("symlink");
    return Carry(Changing, "symlink", PathOf(path), next, target, path);
}

int symlinkat(const char* target, int folder, const char* path) noexcept {
    static const auto next = Next<decltype(symlinkat)>("symlinkat");
    return Carry(Changing, "symlinkat", PathAt(folder, path), next, target, folder, path);
}

int unlink(const char* path) noexcept {
    static const auto next = Next<decltype(unlink)>("unlink");
    return Carry(Changing, "unlink", PathOf(path), next, path);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
    static const auto next = Next<decltype(unlinkat)>("unlinkat");
    return Carry(Changing, "unlinkat", PathAt(folder, path), next, folder, path, flags);
}

int remove(const char* path) noexcept {
    static const auto next = Next<decltype(remove)>("remove");
    return Carry(Changing, "remove", PathOf(path), next, path);
}

int rmdir(const char* path) noexcept {
    static const auto next = Next<decltype(rmdir)>("rmdir");
    return Carry(Changing, "rmdir", PathOf(path), next, path);
}

int mkdir(const char* path, mode_t mode) noexcept {
    static const auto next = Next<decltype(mkdir)>("mkdir");
    return Carry(Changing, "mkdir", PathOf(path), next, path, mode);
}

int mkdirat(int folder, const char* path, mode_t mode) noexcept {
    static const auto next = Next<decltype(mkdirat)>("mkdirat");
    return Carry(Changing, "mkdirat", PathAt(folder, path), next, folder, path, mode);
}

int chmod(const char* path, mode_t mode) noexcept {
    static const auto next = Next<decltype(chmod)>("chmod");
    return Carry(Changing, "chmod", PathOf(path), next, path, mode);
}

int fchmod(int descriptor, mode_t mode) noexcept {
    static const auto next = Next<decltype(fchmod)>("fchmod");
    return Carry(Changing, "fchmod", PathOf(descriptor), next, descriptor, mode);
}

int fchmodat(int folder, const char* path, mode_t mode, int flags) noexcept {
    static const auto next = Next<decltype(fchmodat)>("fchmodat");
    return Carry(Changing, "fchmodat", PathAt(folder, path), next, folder, path, mode, flags);
}

int chown(const char* path, uid_t user, gid_t group) noexcept {
    static const auto next = Next<decltype(chown)>("chown");
    return Carry(Changing, "chown", PathOf(path), next, path, user, group);
}

int fchown(int descriptor, uid_t user, gid_t group) noexcept {
    static const auto next = Next<decltype(fchown)>("fchown");
    return Carry(Changing, "fchown", PathOf(descriptor), next, descriptor, user, group);
}

int fchownat(int folder, const char* path, uid_t user, gid_t group, int flags) noexcept {
    static const auto next = Next<decltype(fchownat)>("fchownat");
    return Carry(Changing, "fchownat", PathAt(folder, path), next, folder, path, user, group,
                 flags);
}

int futimens(int descriptor, const timespec* times) noexcept {
    static const auto next = Next<int(int, const timespec*)>("futimens");
    return Carry(Changing, "futimens", PathOf(descriptor), next, descriptor, times);
}

int utimensat(int folder, const char* path, const timespec* times, int flags) noexcept {
    static const auto next = Next<int(int, const char*, const timespec*, int)>("utimensat");
    return Carry(Changing, "utimensat", PathAt(folder, path), next, folder, path, times, flags);
}

int setxattr(const char* path, const char* name, const void* value, size_t size,
             int flags) noexcept {
    static const auto next = Next<decltype(setxattr)>("setxattr");
    return Carry(Changing, "setxattr", PathOf(path), next, path, name, value, size, flags);
}

int fsetxattr(int descriptor, const char* name, const void* value, size_t size,
              int flags) noexcept {
    static const auto next = Next<decltype(fsetxattr)>("fsetxattr");
    return Carry(Changing, "fsetxattr", PathOf(descriptor), next, descriptor, name, value, size,
                 flags);
}

int removexattr(const char* path, const char* name) noexcept {
    static const auto next = Next<decltype(removexattr)>("removexattr");
    return Carry(Changing, "removexattr", PathOf(path), next, path, name);
}

int fremovexattr(int descriptor, const char* name) noexcept {
    static const auto next = Next<decltype(fremovexattr)>("fremovexattr");
    return Carry(Changing, "fremovexattr", PathOf(descriptor), next, descriptor, name);
}

}  // extern "C"
// NOLINTEND(readability-identifier-naming)
