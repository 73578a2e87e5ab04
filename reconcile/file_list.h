#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/date_time.h"
#include "platform/files.h"

namespace quillon {

/// A sound file of the album in hand.
struct ListedFile {
    std::string Name;     ///< full path
    DateTime FileDate;    ///< last modified
    std::int64_t ID = 0;  ///< its row in `Tracks` while that waits for a number, else 0
    bool IsTagRead = false;
    std::optional<std::int16_t> TagNumber = {};  ///< once the tag is read, and has one
};

/// The sound files of one album, oldest first; files of one age in the order of their folder.
using FileList = std::vector<ListedFile>;

/// A number of files as the tables hold it. Failure: Overflow above 32767.
std::int16_t FileCount(std::size_t files);

/// The sound files among those of an album folder.
FileList ProcessAlbumTracks(std::span<const FileEntry> albumFolder);

/// Adds files of the same album that lie in another folder.
void Merge(FileList& files, FileList others);

/// The files of one album of the flat layout.
FileList ProcessFlatTracks(std::span<const FileEntry> files);

}  // namespace quillon
