#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Texts for people's eyes: terminal columns instead of bytes, and nothing in them that a terminal
/// could take for a command.
namespace quillon {

/// Columns that a UTF-8 text takes on a terminal. Bytes that are no UTF-8 count one each.
std::size_t DisplayColumns(std::string_view text);

/// The text in at most `columns` columns; one that is cut ends in "…".
std::string FitColumns(std::string_view text, std::size_t columns);

/// The text in at most `columns` columns; one that is cut has "…" in its middle, since the end of a
/// path or of a message about a file tells as much as its beginning. What a person sees as one
/// character is never divided.
std::string ShortenMiddle(std::string_view text, std::size_t columns);

/// The text with every control character replaced by a blank, so that names and values from
/// outside cannot move the cursor or end a line. Bytes that are no UTF-8 become U+FFFD.
std::string OneLine(std::string_view text);

/// The text in lines of at most `columns` columns, broken at blanks. A word that is longer than a
/// line stays whole: it is a path or a command, and those get copied.
std::vector<std::string> WrapWords(std::string_view text, std::size_t columns);

/// "1 file", "2 files".
std::string CountText(std::size_t count, std::string_view word);

/// Hours, minutes and seconds: "0:00:12".
std::string ElapsedText(std::chrono::seconds elapsed);

/// The same for what may have taken less than a second: "0.4 s", "0.02 s".
std::string DurationText(std::chrono::milliseconds duration);

}  // namespace quillon
