#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "app/journal/journal_place.h"
#include "platform/failure.h"
#include "platform/portable/system_failure.h"

namespace quillon {
namespace {

FileHandle OpenJournals(const std::filesystem::path& folder) {
    const std::string path = folder.string();
    if (mkdir(path.c_str(), 0777) != 0 && errno != EEXIST) throw SystemFailure(errno, path);
    const int descriptor = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor >= 0) return {descriptor, path};
    if (errno != ELOOP && errno != ENOTDIR) throw SystemFailure(errno, path);
    throw Failure(FailureNumber::PermissionDenied,
                  path + " (it must be a folder; a link is not followed)");
}

}  // namespace

JournalPlace::JournalPlace(const std::filesystem::path& folder) : folder_(OpenJournals(folder)) {}

bool JournalPlace::IsTaken(const std::string& name) const {
    struct stat facts{};
    return fstatat(folder_.Descriptor(), name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) == 0;
}

std::optional<FileHandle> JournalPlace::Make(const std::string& name) const {
    const int descriptor =
        openat(folder_.Descriptor(), name.c_str(),
               O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_NOFOLLOW | O_CLOEXEC, 0666);
    const std::string path = folder_.ShownPath() + '/' + name;
    if (descriptor >= 0) return FileHandle(descriptor, path);
    if (errno != EEXIST) throw SystemFailure(errno, path);
    return std::nullopt;
}

void JournalPlace::Remove(const std::string& name) const noexcept {
    static_cast<void>(unlinkat(folder_.Descriptor(), name.c_str(), 0));
}

void JournalPlace::Sync() const noexcept {
    static_cast<void>(fsync(folder_.Descriptor()));
}

int Reserve(const FileHandle& file, std::uint64_t from, std::uint64_t to) {
    const int result = fallocate(file.Descriptor(), FALLOC_FL_KEEP_SIZE, static_cast<off_t>(from),
                                 static_cast<off_t>(to - from));
    if (result == 0) return 0;
    return errno == EDQUOT ? ENOSPC : errno;
}

}  // namespace quillon
