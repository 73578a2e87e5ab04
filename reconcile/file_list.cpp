#include "reconcile/file_list.h"

#include <algorithm>
#include <limits>

#include "platform/failure.h"
#include "run/sound_files.h"

namespace quillon {
namespace {

void SortByDate(FileList& files) {
    std::stable_sort(files.begin(), files.end(), [](const ListedFile& a, const ListedFile& b) {
        return a.FileDate.days < b.FileDate.days;
    });
}

}  // namespace

std::int16_t FileCount(std::size_t files) {
    if (files > std::numeric_limits<std::int16_t>::max())
        throw Failure(FailureNumber::Overflow, std::to_string(files) + " files in one album");
    return static_cast<std::int16_t>(files);
}

FileList ProcessAlbumTracks(std::span<const FileEntry> albumFolder) {
    FileList list;
    for (const FileEntry& file : albumFolder) {
        if (IsSoundFile(file.name)) list.push_back({.Name = file.path, .FileDate = file.modified});
    }
    SortByDate(list);
    return list;
}

FileList ProcessFlatTracks(std::span<const FileEntry> files) {
    FileList list;
    for (const FileEntry& file : files)
        list.push_back({.Name = file.path, .FileDate = file.modified});
    SortByDate(list);
    return list;
}

}  // namespace quillon
