#include "platform/portable/safe_file.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <system_error>
#include <unistd.h>

#include "platform/portable/local_file.h"
#include "platform/portable/system_failure.h"

namespace quillon {
namespace {

/// The file that a path leads to through symbolic links; a link that leads nowhere is replaced.
std::string BehindLinks(const std::string& path) {
    std::error_code nowhere;
    if (!std::filesystem::is_symlink(path, nowhere)) return path;
    const std::filesystem::path real = std::filesystem::canonical(path, nowhere);
    return nowhere ? path : real.string();
}

}  // namespace

SafeFile::SafeFile(const std::string& target, std::string_view shownPath, Existing existing,
                   mode_t mode, unsigned number)
    : target_(existing == Existing::Replace ? BehindLinks(target) : target),
      shownPath_(shownPath),
      existing_(existing),
      draft_(Create(mode, number)) {}

/// Refuses what must not be replaced.
void SafeFile::RefuseOthers() const {
    struct stat facts{};
    if (lstat(target_.c_str(), &facts) != 0) return;
    if (existing_ == Existing::Refuse) throw SystemFailure(EEXIST, shownPath_);
    if (existing_ == Existing::ReplaceOwn && S_ISLNK(facts.st_mode))
        throw NoFileFailure(facts.st_mode, shownPath_);
}

TemporaryEntry SafeFile::Create(mode_t mode, unsigned number) const {
    RefuseOthers();
    const std::optional<struct stat> old = FactsOf(target_);
    if (old && !S_ISREG(old->st_mode)) throw NoFileFailure(old->st_mode, shownPath_);
    if (old && faccessat(AT_FDCWD, target_.c_str(), W_OK, AT_EACCESS) != 0)
        throw SystemFailure(errno, shownPath_);
    TemporaryEntry draft = MakeTemporaryFile(FolderOf(target_), shownPath_, mode, number);
    if (old) {
        const int descriptor = draft.handle.Descriptor();
        // Only the super-user may give a file away; for everyone else it is theirs already.
        if (fchown(descriptor, old->st_uid, old->st_gid) != 0) errno = 0;
        fchmod(descriptor, old->st_mode & 07777U);
    }
    return draft;
}

SafeFile::~SafeFile() {
    if (!committed_) unlink(draft_.path.c_str());
}

void SafeFile::Sync() {
    if (isSynced_) return;
    if (fsync(draft_.handle.Descriptor()) != 0) throw SystemFailure(errno, shownPath_);
    isSynced_ = true;
}

void SafeFile::SyncFileSystem() const {
    if (syncfs(draft_.handle.Descriptor()) != 0) throw SystemFailure(errno, shownPath_);
}

void SafeFile::Commit() {
    Sync();
    TakeName();
    SyncFolder(Folder());
}

std::string SafeFile::Folder() const {
    return FolderOf(target_);
}

void SafeFile::TakeName() {
    const int error = existing_ == Existing::Refuse ? RenameToFreeName(draft_.path, target_)
                      : rename(draft_.path.c_str(), target_.c_str()) == 0 ? 0
                                                                          : errno;
    if (error != 0) throw SystemFailure(error, shownPath_);
    committed_ = true;
}

}  // namespace quillon
