#pragma once

#include <string>
#include <string_view>

#include "tags/tag.h"

namespace quillon {

class Run;

/// A song as the library's folders and the database name it.
struct SongNames {
    std::string artist;
    std::string album;
    std::string song;
};

/// A tag for the writer, and what the database could not say for it.
struct BuiltTag {
    Tag tag;
    bool lengthKnown = false;
    bool trackKnown = false;
};

/// Builds what a file's tag should be.
///
/// Title, artist and album are the names given, unless the present tag says the same and more than
/// a name can hold: AC/DC stays in the folder AC-DC, a text in other letters than the code page has
/// stays, and a title stays to which the file's name adds a number. Number and length are those of
/// the file's own row among the owned tracks (by `path`), else of an owned row of these names, else
/// of any. The number counts if a tag can hold it (1 to 255). A length that the row does not know
/// is that of the download table; the comment says it as CommentWithLength does. The genre is that
/// of the download table. Of the present tag stay the year, the rest of the comment, and the number
/// and length that the database does not know; an empty genre leaves the tag's own to the writer.
///
/// Failures are logged with "GetID3Info Management", and what they concern is treated as unknown.
BuiltTag GetID3Info(Run& run, std::string_view path, const SongNames& names, const Tag& present);

}  // namespace quillon
