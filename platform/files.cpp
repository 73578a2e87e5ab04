#include "platform/files.h"

#include <algorithm>

#include "platform/failure.h"

namespace quillon {

std::vector<std::uint8_t> BinaryReader::Read(std::size_t count) {
    std::vector<std::uint8_t> bytes(
        static_cast<std::size_t>(std::min<std::uint64_t>(count, Size())));
    bytes.resize(ReadInto(bytes));
    return bytes;
}

std::unique_ptr<AnnouncedMoves> Files::Announce(std::span<const FileMove> /*moves*/) {
    return nullptr;
}

bool FolderMayExist(Files& files, std::string_view path) try {
    return files.FolderExists(path);
} catch (const Failure&) {
    return true;
}

std::uint64_t SizeOf(Files& files, const std::string& path) try {
    if (!files.FolderExists(path)) return files.GetFile(path).size;
    const Listing<FileEntry> list = files.FilesIn(path);
    std::uint64_t size = 0;
    for (const FileEntry& file : list)
        size += file.size;
    if (list.others.empty()) return size;
    for (const FolderEntry& folder : files.SubFolders(path))
        size += SizeOf(files, folder.path);
    return size;
} catch (const Failure&) {
    return 0;
}

}  // namespace quillon
