#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "tags/tag.h"

namespace quillon {

/// What is known about a file that is added to the library.
struct AddedFile {
    std::string artist;
    std::string album;
    std::string title;
    std::string disc = {};  ///< name of the disc folder in the album's; "" for none
    std::int16_t track = 1;
    std::string genre = "other";
};

/// A title by a file's path: what follows the last "-" of the whole path, without blanks at its
/// ends, or the whole path; every ".mp3" in it is taken out, whatever its letter case.
///
/// The search goes over the folders' names, too, so that a file that has no "-" in its own name
/// gets a title that no file can have.
std::string TitleInPath(std::string_view path);

/// The title of such a file when its tag has none either: its name without ".mp3".
std::string TitleInName(std::string_view path);

/// The name that SpinnerGenre has for a genre's number, given in digits as the tag holds it; ""
/// when it has no row. Failure for a text that is no number.
using FindGenre = std::function<std::string(std::string_view number)>;

/// Replaces what the tag, whose genre is told by its number, knows better. Blanks around a text are
/// padding and do not count; a text of nothing else is none. A "|" in a text shifts what is behind
/// it. Failure: a track number beyond 16 bits, and what `findGenre` throws.
void ReadTagInto(AddedFile& file, const Tag& tag, const FindGenre& findGenre);

/// The disc folder for a file of this path: that which it lies in, else CD2 and so on by the number
/// in its tag. Files of a first disc that only a tag names lie in the album's folder, before all
/// others.
std::string DiscFolderOf(std::string_view path, const Tag& tag);

/// Failure (BadFileName, naming what is wrong) when the artist or the album cannot be a folder's
/// name or the title cannot be a file's.
void RequireFileNames(const AddedFile& file, std::string_view path);

}  // namespace quillon
