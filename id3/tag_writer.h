#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "id3/tag_record.h"
#include "platform/files.h"

namespace quillon {

class Run;

/// Bytes that the nine pieces of a record take in a tag, which is always one of version 1.1: the
/// empty piece Ver is the zero byte between a comment of 28 bytes and the track number.
constexpr std::array<std::size_t, 9> TagFieldLengths{3, 30, 30, 30, 4, 28, 1, 1, 1};

/// The first `length` characters of a text as bytes of the ANSI code page, with zero bytes behind
/// them where the text is shorter. Failure: InvalidProcedureCall for a character without a byte.
std::vector<std::uint8_t> ByteField(std::string_view text, std::size_t length);

/// The end of a file, as far as a tag may lie there. Throws Failure.
FileEnd ReadTagEnd(Files& files, std::string_view path);

/// The tag record of the end of the file of this path, "" when there is no tag: what ReadID3 gives,
/// but with the genre by the name that SpinnerGenre has now. Failures are logged as those of
/// ReadID3.
std::string ReadTag(Run& run, std::string_view path, const FileEnd& end);

/// Writes a record of nine pieces ("TAG|title|artist|album|year|comment||track|genre", with no "|"
/// at its end) over a file's tag, or behind a file that has none. Whether the file holds that tag
/// now. A record of any other shape is refused, and so is one with a character that a tag cannot
/// hold or a track number above 255; the file is untouched then.
///
/// The genre is written by the number that SpinnerGenre has for its name. For a name without number
/// the file keeps the genre byte that it has (255, none, if it has no tag), and the log says so:
/// a wrong genre would be worse than an old one. An empty piece keeps it, too. Texts are written in
/// the ANSI code page, but for those that the file's tag says already in UTF-8: these keep their
/// bytes, whatever letters they are in.
///
/// Failures are logged with "WriteID3 Management" and the file's path.
bool WriteTag(Run& run, std::string_view path, std::string_view record);

/// The same for a file whose end has been read already. Nothing is written if it has changed since.
bool WriteTag(Run& run, std::string_view path, const FileEnd& end, std::string_view record);

}  // namespace quillon
