#include "platform/portable/safe_folder.h"

#include <cerrno>
#include <utility>

#include "platform/portable/local_file.h"
#include "platform/portable/system_failure.h"

namespace quillon {

SafeFolder::SafeFolder(std::string target, std::string_view shownPath)
    : target_(std::move(target)), draft_(MakeTemporaryFolder(FolderOf(target_), shownPath)) {}

SafeFolder::~SafeFolder() {
    if (committed_) return;
    draft_.handle.Close();
    RemoveAll(draft_.path);
}

void SafeFolder::AddFolder(const std::string& name, std::string_view shownPath) {
    const std::string path = draft_.path + '/' + name;
    if (const int error = MakeFolder(path); error != 0) throw SystemFailure(error, shownPath);
}

void SafeFolder::AddFile(const FileHandle& source, const std::string& name,
                         std::string_view shownPath,
                         const std::function<void(std::uint64_t bytes)>& watch) {
    const FileFacts facts = source.Facts();
    const std::string path = draft_.path + '/' + name;
    const int descriptor = CreateLocal(path, facts.rights);
    if (descriptor < 0) throw SystemFailure(errno, shownPath);
    const FileHandle copy(descriptor, shownPath);
    copy.WriteFrom(source, 0, watch);
    copy.SetModified(facts.modified);
    const int error = FlushTakesAll() ? 0 : copy.Flush();
    if (error != 0) throw SystemFailure(error, shownPath);
}

void SafeFolder::Commit() {
    // A disk waits for each file that is flushed by itself.
    const std::string shown = draft_.handle.ShownPath();
    if (const int error = FlushTakesAll() ? draft_.handle.FlushAll() : 0; error != 0)
        throw SystemFailure(error, shown);
    if (const int error = RenameToFreeName(draft_.path, target_); error != 0)
        throw SystemFailure(error, shown);
    committed_ = true;
    SyncFolder(FolderOf(target_));
}

}  // namespace quillon
