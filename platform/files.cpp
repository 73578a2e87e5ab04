#include "platform/files.h"

#include "platform/failure.h"

namespace quillon {

bool FolderMayExist(Files& files, std::string_view path) try {
    return files.FolderExists(path);
} catch (const Failure&) {
    return true;
}

}  // namespace quillon
