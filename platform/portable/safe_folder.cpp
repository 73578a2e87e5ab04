#include "platform/portable/safe_folder.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/portable/local_file.h"
#include "platform/portable/system_failure.h"

namespace quillon {

SafeFolder::SafeFolder(std::string target, std::string_view shownPath)
    : target_(std::move(target)), draft_(MakeTemporaryFolder(FolderOf(target_), shownPath)) {}

SafeFolder::~SafeFolder() {
    std::error_code left;
    if (!committed_) std::filesystem::remove_all(draft_.path, left);
}

void SafeFolder::AddFolder(const std::string& name, std::string_view shownPath) {
    const std::string path = draft_.path + '/' + name;
    if (mkdir(path.c_str(), 0777) != 0) throw SystemFailure(errno, shownPath);
}

void SafeFolder::AddFile(const FileHandle& source, const std::string& name,
                         std::string_view shownPath) {
    const struct stat facts = source.Facts();
    const std::string path = draft_.path + '/' + name;
    const int descriptor =
        open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, facts.st_mode & 0777U);
    if (descriptor < 0) throw SystemFailure(errno, shownPath);
    const FileHandle copy(descriptor, shownPath);
    copy.WriteFrom(source);
    copy.SetModified(facts.st_mtim);
}

void SafeFolder::Commit() {
    // A disk waits for each file that is flushed by itself.
    if (syncfs(draft_.handle.Descriptor()) != 0)
        throw SystemFailure(errno, draft_.handle.ShownPath());
    const int error = RenameToFreeName(draft_.path, target_);
    if (error != 0) throw SystemFailure(error, draft_.handle.ShownPath());
    committed_ = true;
    SyncFolder(FolderOf(target_));
}

}  // namespace quillon
