#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/date_time.h"
#include "platform/files.h"
#include "tags/tag.h"

namespace quillon {

class Run;

/// What a track takes from its file's tag, as it stands there; "" where that says nothing.
struct TrackTag {
    std::string number;
    std::string seconds;  ///< the length that the comment says between two marks
    std::string disc;
    std::string artist;
};

/// Which numbers of their album the songs of one disc have: those behind `before`, so many.
struct DiscNumbers {
    std::int64_t before = 0, count = 0;
};

/// A "|" in a tag's text shifts what is behind it; whatever then stands in a place is taken.
TrackTag TrackTagOf(Tag tag);

/// A sound file of the album in hand.
struct ListedFile {
    std::string Name;          ///< full path
    DateTime FileDate;         ///< last modified
    std::uint64_t Size = 0;    ///< bytes
    std::int64_t Changed = 0;  ///< as `FileEntry::changed`
    std::int64_t ID = 0;       ///< its row in `Tracks` while that waits for a number, else 0
    int Disc = 0;              ///< of the disc folder it lies in; 0: it lies in none
    DiscNumbers Numbers = {};
    std::optional<TrackTag> Tag = {};  ///< once it is read
    bool IsUnreadable = false;         ///< it could not be read, which is logged
};

/// What its tag says; nothing where it could not be read, which is logged.
std::optional<TrackTag> ReadTrackTag(Run& run, const ListedFile& file);

/// The sound files of one album, disc by disc, oldest first; files of one age in the order of their
/// folder.
using FileList = std::vector<ListedFile>;

/// A number of files as the tables hold it. Failure: Overflow above 32767.
std::int16_t FileCount(std::size_t files);

/// The sound files among those of an album folder, or of one of its disc folders. It takes their
/// paths.
FileList ProcessAlbumTracks(std::span<FileEntry> albumFolder, int disc = 0);

/// Adds files of the same album that lie in another folder.
void Merge(FileList& files, FileList others);

/// The files of one album of the flat layout.
FileList ProcessFlatTracks(FileList files);

}  // namespace quillon
