#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "tags/known_tags.h"
#include "tags/tag.h"
#include "tags/tag_formats.h"

namespace quillon {

class Run;

/// What a tag's genre is told by.
enum class GenreAs {
    Name,    ///< the one that the run has read for its number; "" where there is none
    Number,  ///< in decimal digits
};

/// A file's ID3 version 1 tag; nothing where it could not be read. Never throws: a failure is
/// logged with "Read ID3 File Error:".
///
/// Where the run reads tags of all kinds: what these say together. A field of ID3 version 2, or
/// without one of APE, goes before that of version 1. The length is that of a comment, version 2
/// first, else that of the sound; it may be known of a file without a tag. A genre that has a name
/// there keeps it, with GenreAs::Number, too.
std::optional<Tag> ReadID3(Run& run, std::string_view path, GenreAs genre = GenreAs::Name);

/// The same for a file that has just been listed, which need not be looked at again, nor opened
/// where it is known what its tags say.
std::optional<Tag> ReadID3(Run& run, const FileEntry& file);

/// The same for a file that no other run will ask for: nothing is known of it nor kept.
std::optional<Tag> ReadID3Once(Run& run, const FileEntry& file, GenreAs genre);

/// Under whom the file's album is filed, as TagFormats tells it; "" where it could not be read,
/// which is logged, or the run does not read tags of all kinds.
std::string ReadAlbumArtist(Run& run, std::string_view path);

/// Whether there is a picture in the file's tag of ID3 version 2; nobody looks into a file of which
/// that is known. Unknown where it could not be read, which is logged.
EmbeddedArt LookForArt(Run& run, const FileEntry& file);

/// That picture, where one is promised. Where there is none after all, that is remembered. Failures
/// are logged.
std::optional<EmbeddedImage> ReadArt(Run& run, const FileEntry& file);

/// From now on the file counts as one without a picture.
void NoteNoArt(Run& run, const FileEntry& file);

/// What tags of all kinds say together: where a text has only blanks, that of version 1 takes its
/// place. So it does where APE says something else, since nobody writes APE: what ID3Write has
/// corrected in version 1 would be found wrong for ever. A text of APE that version 1 has only cut
/// stays.
FoundTag Together(OtherTags other, const Tag& old, std::optional<std::uint8_t> oldGenre);

/// As much of a file's end as `TagFormats::Read` asks for. Throws Failure.
std::vector<std::uint8_t> ReadEndForTags(BinaryReader& file, std::string_view path);

/// The end of a file, as far as a tag may lie there. Throws Failure.
FileEnd ReadTagEnd(Files& files, std::string_view path);

/// The tag in the end of the file of this path: what ReadID3 gives, but with the genre by the name
/// that SpinnerGenre has now. Failures are logged as those of ReadID3.
Tag ReadTag(Run& run, std::string_view path, const FileEnd& end);

}  // namespace quillon
