#include "picker/folders.h"

#include "platform/files.h"

namespace quillon {

void MakeFolders(Files& files, std::string_view folder) {
    while (folder.ends_with('\\'))
        folder.remove_suffix(1);
    if (folder.empty() || files.FolderExists(folder)) return;
    const std::size_t slash = folder.rfind('\\');
    if (slash != std::string_view::npos) MakeFolders(files, folder.substr(0, slash));
    files.CreateFolder(folder);
}

PageFolder::PageFolder(Files& files, std::string_view folder)
    : files_(files),
      folder_(folder),
      draft_(folder_ + std::string(DraftEnding)),
      previous_(folder_ + ".old") {}

void PageFolder::Restore() {
    PutBack();
    Clear();
}

void PageFolder::Start() {
    Restore();
    MakeFolders(files_, draft_);
}

void PageFolder::Publish() {
    if (files_.FolderExists(folder_)) files_.MoveFolder(folder_, previous_);
    files_.MoveFolder(draft_, folder_);
}

void PageFolder::PutBack() {
    if (files_.FolderExists(previous_) && !files_.FolderExists(folder_)) {
        files_.MoveFolder(previous_, folder_);
    }
}

void PageFolder::Clear() {
    Delete(draft_);
    if (files_.FolderExists(folder_)) Delete(previous_);
}

void PageFolder::Delete(const std::string& folder) {
    if (files_.FolderExists(folder)) files_.DeleteFolder(folder);
}

}  // namespace quillon
