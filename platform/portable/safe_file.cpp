#include "platform/portable/safe_file.h"

#include <cerrno>
#include <optional>

#include "platform/portable/local_file.h"
#include "platform/portable/system_failure.h"

namespace quillon {

SafeFile::SafeFile(const std::string& target, std::string_view shownPath, Existing existing,
                   std::uint32_t rights, unsigned number)
    : target_(target), shownPath_(shownPath), existing_(existing), draft_(Create(rights, number)) {}

/// Finds out what is to be replaced, and refuses what must not be.
TemporaryEntry SafeFile::Create(std::uint32_t rights, unsigned number) {
    std::optional<FileFacts> old = FactsOfLink(target_);
    if (old && existing_ == Existing::Refuse) throw SystemFailure(EEXIST, shownPath_);
    if (old && old->kind == LocalKind::Link) {
        if (existing_ == Existing::ReplaceOwn) throw NoFileFailure(old->kind, shownPath_);
        // A link that leads nowhere is replaced itself.
        target_ = RealPath(target_).value_or(target_);
        old = FactsOf(target_);
    }
    if (old && !old->IsFile()) throw NoFileFailure(old->kind, shownPath_);
    if (old && !MayWrite(target_)) throw SystemFailure(errno, shownPath_);
    TemporaryEntry draft = MakeTemporaryFile(FolderOf(target_), shownPath_, rights, number);
    if (old) draft.handle.TakeRightsOf(*old);
    return draft;
}

SafeFile::~SafeFile() {
    if (committed_) return;
    draft_.handle.Close();
    RemoveEntry(draft_.path);
}

void SafeFile::Sync() {
    if (isSynced_) return;
    if (const int error = draft_.handle.Flush(); error != 0) throw SystemFailure(error, shownPath_);
    isSynced_ = true;
}

void SafeFile::SyncFileSystem() const {
    if (const int error = draft_.handle.FlushAll(); error != 0)
        throw SystemFailure(error, shownPath_);
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
                                                    : RenameOver(draft_.path, target_);
    if (error != 0) throw SystemFailure(error, shownPath_);
    committed_ = true;
    // Whoever changes the file next need not wait for this object's end.
    draft_.handle.Close();
}

}  // namespace quillon
