#include "reconcile/file_list.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "platform/failure.h"
#include "run/sound_files.h"

namespace quillon {
namespace {

bool IsOlder(const ListedFile& left, const ListedFile& right) {
    return left.FileDate.days < right.FileDate.days;
}

void SortByDate(FileList& files) {
    std::stable_sort(files.begin(), files.end(), IsOlder);
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

void Merge(FileList& files, FileList others) {
    const auto middle = static_cast<FileList::difference_type>(files.size());
    std::move(others.begin(), others.end(), std::back_inserter(files));
    std::inplace_merge(files.begin(), files.begin() + middle, files.end(), IsOlder);
}

FileList ProcessFlatTracks(std::span<const FileEntry> files) {
    FileList list;
    for (const FileEntry& file : files)
        list.push_back({.Name = file.path, .FileDate = file.modified});
    SortByDate(list);
    return list;
}

}  // namespace quillon
