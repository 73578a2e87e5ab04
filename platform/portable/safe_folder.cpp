#include "platform/portable/safe_folder.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/portable/local_file.h"
#include "platform/portable/rename_file.h"
#include "platform/portable/system_failure.h"

namespace quillon {

SafeFolder::SafeFolder(std::string target, std::string_view shownPath)
    : target_(std::move(target)), draft_(MakeTemporaryFolder(FolderOf(target_), shownPath)) {}

SafeFolder::~SafeFolder() {
    std::error_code left;
    if (!committed_) std::filesystem::remove_all(draft_.path, left);
}

void SafeFolder::Commit() {
    const int error = RenameToFreeName(draft_.path, target_);
    if (error != 0) throw SystemFailure(error, draft_.handle.ShownPath());
    committed_ = true;
    SyncFolder(FolderOf(target_));
}

}  // namespace quillon
