#pragma once

#include <dirent.h>
#include <memory>
#include <string>

namespace quillon {

struct CloseFolder {
    void operator()(DIR* stream) const { closedir(stream); }
};

/// A local folder being read, closed with this pointer.
using FolderStream = std::unique_ptr<DIR, CloseFolder>;

/// Null, with errno set, when the folder cannot be read.
inline FolderStream OpenFolder(const std::string& folder) {
    return FolderStream(opendir(folder.c_str()));
}

}  // namespace quillon
