#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "tags/tag.h"
#include "tags/tag_formats.h"

namespace quillon {

class Run;

/// The first `length` characters of a text as bytes of the ANSI code page, with zero bytes behind
/// them where the text is shorter. Failure: InvalidProcedureCall for a character without a byte.
std::vector<std::uint8_t> ByteField(std::string_view text, std::size_t length);

/// Writes a tag of version 1.1 over a file's tag, or behind a file that has none. Whether the file
/// holds that tag now. A tag with a "|" in a field is refused, since its record would tell another
/// one, and so is one with a character that a tag cannot hold or a track number above 255; the file
/// is untouched then.
///
/// The genre is written by the number that SpinnerGenre has for its name. For a name without number
/// the file keeps the genre byte that it has (255, none, if it has no tag), and the log says so:
/// a wrong genre would be worse than an old one. An empty one keeps it, too. Texts are written in
/// the ANSI code page, but for those that the file's tag says already in UTF-8: these keep their
/// bytes, whatever letters they are in.
///
/// Failures are logged with "WriteID3 Management" and the file's path.
bool WriteTag(Run& run, std::string_view path, const Tag& tag);

/// The same for a file whose end has been read already. Nothing is written if it has changed since.
bool WriteTag(Run& run, std::string_view path, const FileEnd& end, const Tag& tag);

/// What a file's tags of all kinds say, for whoever is about to write them.
struct PresentTags {
    OtherTags other;
    Tag together;  ///< with that of version 1
};

/// Throws Failure.
PresentTags ReadPresentTags(Run& run, std::string_view path, const Tag& old);

/// Brings the file's tag of ID3 version 2 in line with what it is to say: its title, artist, album,
/// track, genre and the length in a comment that says one, as far as it has them. A genre that is
/// told there is never overwritten by "Other", which means as much as none; a number is no genre.
/// Whether something was
/// changed. Failures are logged as above.
bool WriteOtherTags(Run& run, std::string_view path, const OtherTags& present, const Tag& wanted);

/// Whether a tag of version 1 can hold the texts of one, if only their beginnings.
bool HoldsTexts(const Tag& tag);

}  // namespace quillon
