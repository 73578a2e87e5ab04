#include "driver/library_folders.h"

#include <memory>
#include <string>
#include <string_view>

#include "platform/basic_text.h"
#include "run/paths.h"

namespace quillon {
namespace {

FolderEntry FolderAt(std::string_view written) {
    std::string path = FolderPath(written);
    std::string name = path.substr(path.rfind('\\') + 1);
    return {std::move(path), std::move(name)};
}

void AddListedFolders(Files& files, const std::string& list, std::vector<FolderEntry>& folders) {
    const std::unique_ptr<TextReader> reader = files.OpenText(list);
    while (!reader->AtEndOfStream()) {
        const std::string line = reader->ReadLine();
        if (!line.empty() && files.FolderExists(line)) folders.push_back(FolderAt(line));
    }
}

}  // namespace

std::vector<FolderEntry> BuildLibraryFolders(Files& files, const Settings& settings) {
    const std::string& root = settings.LibraryRoot;
    if (root.empty() || !files.FolderExists(root)) return {};
    if (!settings.LibraryDepthOption) return {FolderAt(root)};

    std::vector<FolderEntry> folders = files.SubFolders(root);
    for (const FileEntry& file : files.FilesIn(root)) {
        if (LowerCase(file.name).find(".txt") != std::string::npos) {
            AddListedFolders(files, file.path, folders);
        }
    }
    return folders;
}

}  // namespace quillon
