#include "tests/faults/preload/unsynced_files.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/faults/preload/fault_plan.h"
#include "tests/faults/preload/lasting.h"
#include "tests/faults/preload/next_call.h"
#include "tests/faults/preload/trial_paths.h"

namespace quillon::faults {
namespace {

/// The file of a descriptor by the calls behind those that are counted here.
bool Facts(int descriptor, struct stat& facts) {
    static const auto next = Next<decltype(fstat)>("fstat");
    return next(descriptor, &facts) == 0;
}

int OpenBoth(const std::string& path) {
    return static_cast<int>(
        syscall(SYS_openat, AT_FDCWD, path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK));
}

std::vector<char> Content(int descriptor, off_t size) {
    static const auto next = Next<decltype(pread)>("pread");
    std::vector<char> content(static_cast<std::size_t>(size));
    const ssize_t length = next(descriptor, content.data(), content.size(), 0);
    content.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
    return content;
}

}  // namespace

UnsyncedFiles& UnsyncedFiles::Get() {
    return Lasting<UnsyncedFiles>();
}

void UnsyncedFiles::BeforeChange(int descriptor) {
    if (PowerIsCut() && !PathOf(descriptor).empty())
        BeforeChange(("/proc/self/fd/" + std::to_string(descriptor)).c_str());
}

void UnsyncedFiles::BeforeChange(const char* path) {
    if (!PowerIsCut()) return;
    const int before = errno;
    const int descriptor = OpenBoth(path);
    struct stat facts{};
    if (descriptor >= 0 && Facts(descriptor, facts) && S_ISREG(facts.st_mode)) {
        const auto [place, added] = files_.try_emplace({facts.st_dev, facts.st_ino}, Kept{});
        if (added) {
            place->second = {descriptor, Content(descriptor, facts.st_size), facts.st_mtim};
        } else {
            syscall(SYS_close, descriptor);
        }
    }
    errno = before;
}

void UnsyncedFiles::Flushed(int descriptor) {
    struct stat facts{};
    if (!PowerIsCut() || !Facts(descriptor, facts)) return;
    const auto found = files_.find({facts.st_dev, facts.st_ino});
    if (found == files_.end()) return;
    syscall(SYS_close, found->second.descriptor);
    files_.erase(found);
}

void UnsyncedFiles::AllFlushed() {
    for (const auto& [identity, file] : files_)
        syscall(SYS_close, file.descriptor);
    files_.clear();
}

void UnsyncedFiles::Lose() {
    static const auto nextTruncate = Next<decltype(ftruncate)>("ftruncate");
    static const auto nextWrite = Next<decltype(pwrite)>("pwrite");
    static const auto nextTimes = Next<int(int, const timespec*)>("futimens");
    for (const auto& [identity, file] : files_) {
        const auto& content = file.content;
        if (nextTruncate(file.descriptor, static_cast<off_t>(content.size())) != 0) continue;
        if (nextWrite(file.descriptor, content.data(), content.size(), 0) < 0) continue;
        const std::array<timespec, 2> times{file.modified, file.modified};
        nextTimes(file.descriptor, times.data());
    }
}

}  // namespace quillon::faults
