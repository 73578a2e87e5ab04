#include "tests/faults/preload/trial_paths.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/syscall.h>
#include <unistd.h>

namespace quillon::faults {
namespace {

const char* TrialFolder() {
    static const char* const folder = std::getenv("QUILLON_FAULT_FOLDER");
    return folder == nullptr ? "" : folder;
}

/// The path itself where it lies in the trial's folder, else "".
std::string IfInTrial(const std::string& path) {
    const std::string_view folder = TrialFolder();
    const bool inside = !folder.empty() && path.starts_with(folder) &&
                        (path.size() == folder.size() || path[folder.size()] == '/');
    return inside ? path : "";
}

std::string LinkTarget(const std::string& link) {
    std::array<char, PATH_MAX> target{};
    const int before = errno;
    const long length =
        syscall(SYS_readlinkat, AT_FDCWD, link.c_str(), target.data(), target.size());
    errno = before;
    return length > 0 ? std::string(target.data(), static_cast<std::size_t>(length)) : "";
}

std::string FolderPath(int folder) {
    return LinkTarget(folder == AT_FDCWD ? "/proc/self/cwd"
                                         : "/proc/self/fd/" + std::to_string(folder));
}

}  // namespace

std::string PathAt(int folder, const char* path) {
    const std::string given(path);
    // Asked of a descriptor itself, with no path.
    if (given.empty()) return folder == AT_FDCWD ? "" : PathOf(folder);
    const std::string whole = given.front() == '/' ? given : FolderPath(folder) + '/' + given;
    std::string normal = std::filesystem::path(whole).lexically_normal().string();
    if (normal.size() > 1 && normal.back() == '/') normal.pop_back();
    return IfInTrial(normal);
}

std::string PathOf(const char* path) {
    return PathAt(AT_FDCWD, path);
}

std::string PathOf(int descriptor) {
    return IfInTrial(LinkTarget("/proc/self/fd/" + std::to_string(descriptor)));
}

std::string Between(const std::string& from, const std::string& to) {
    return from.empty() && to.empty() ? "" : from + " -> " + to;
}

}  // namespace quillon::faults
