#include "reconcile/file_list.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

#include "platform/failure.h"
#include "run/sound_files.h"
#include "tags/length_text.h"
#include "tags/tag_reader.h"

namespace quillon {
namespace {

bool ComesFirst(const ListedFile& left, const ListedFile& right) {
    if (left.Disc != right.Disc) return left.Disc < right.Disc;
    return left.FileDate.days < right.FileDate.days;
}

/// Albums are mostly copied in one go, and have one date or are in order.
void SortByDate(FileList& files) {
    if (!std::is_sorted(files.begin(), files.end(), ComesFirst))
        std::stable_sort(files.begin(), files.end(), ComesFirst);
}

}  // namespace

TrackTag TrackTagOf(Tag tag) {
    const Tag recorded = AsRecorded(std::move(tag));
    TrackTag track{.number = recorded.track,
                   .seconds = recorded.seconds,
                   .disc = recorded.disc,
                   .artist = recorded.artist};
    if (!track.seconds.empty()) return track;
    const std::optional<LengthMark> length = LengthInComment(recorded.comment);
    if (length && length->isClosed) track.seconds = length->seconds;
    return track;
}

std::optional<TrackTag> ReadTrackTag(Run& run, const ListedFile& file) {
    std::optional<Tag> tag = ReadID3(run, FileEntry{.path = file.Name,
                                                    .name = {},
                                                    .size = file.Size,
                                                    .modified = file.FileDate,
                                                    .changed = file.Changed});
    if (!tag) return std::nullopt;
    return TrackTagOf(*std::move(tag));
}

std::int16_t FileCount(std::size_t files) {
    if (files > std::numeric_limits<std::int16_t>::max())
        throw Failure(FailureNumber::Overflow, std::to_string(files) + " files in one album");
    return static_cast<std::int16_t>(files);
}

FileList ProcessAlbumTracks(std::span<FileEntry> albumFolder, int disc) {
    FileList list;
    list.reserve(albumFolder.size());
    for (FileEntry& file : albumFolder) {
        if (!IsSoundFile(file.name)) continue;
        list.push_back({.Name = std::move(file.path),
                        .FileDate = file.modified,
                        .Size = file.size,
                        .Changed = file.changed,
                        .Disc = disc});
    }
    SortByDate(list);
    return list;
}

void Merge(FileList& files, FileList others) {
    if (files.empty()) {
        files = std::move(others);
        return;
    }
    const auto middle = static_cast<FileList::difference_type>(files.size());
    std::move(others.begin(), others.end(), std::back_inserter(files));
    std::inplace_merge(files.begin(), files.begin() + middle, files.end(), ComesFirst);
}

FileList ProcessFlatTracks(FileList files) {
    SortByDate(files);
    return files;
}

}  // namespace quillon
