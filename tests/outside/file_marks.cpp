#include "tests/outside/file_marks.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace outside {
namespace {

void RequireDone(int result, const std::filesystem::path& path) {
    if (result != 0) throw std::system_error(errno, std::generic_category(), path.string());
}

}  // namespace

bool IsSuperUser() {
    return geteuid() == 0;
}

void SetModified(const std::filesystem::path& path, std::int64_t seconds,
                 std::int32_t nanoseconds) {
    const timespec times[] = {{0, UTIME_OMIT}, {seconds, nanoseconds}};
    RequireDone(utimensat(AT_FDCWD, path.c_str(), times, 0), path);
}

void SetRights(const std::filesystem::path& path, unsigned rights) {
    RequireDone(chmod(path.c_str(), rights), path);
}

void MakePipe(const std::filesystem::path& path) {
    RequireDone(mkfifo(path.c_str(), 0600), path);
}

}  // namespace outside
