#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

/// A tag's comment that carries the track's length has the form "Length='184'" (whole seconds).
struct LengthMark {
    std::string_view seconds;  ///< between "Length='" and the next "'", or the end
    bool isClosed = false;     ///< else the field's end may have cut digits off
};

/// Nothing when the comment holds no such text. Valid as long as the comment.
std::optional<LengthMark> LengthInComment(std::string_view comment);

/// The number of seconds that a comment says, rounded to whole ones; "" for none, for what is no
/// number above 0 and for what the database cannot hold.
std::string WholeSecondsIn(std::string_view comment);

/// The comment text for a length: "Length='" + seconds + "'".
std::string LengthComment(std::string_view seconds);

/// A comment that says this length, within the 28 characters that a comment has beside a track
/// number. A length that it says already is replaced where it stands; what then finds no room is
/// cut off the text behind it and, if need be, before it. A text without a length gets one behind
/// it, if there is room for both; else the text stays alone, because nobody could write it again,
/// while the length is known to the database. So does a text that the code page cannot hold.
std::string CommentWithLength(std::string_view comment, std::string_view seconds);

/// A length in a difference row has the form "Length=184". Its number of seconds; a value that is
/// the bare number serves as well. None when what is left is not numeric or no whole number of
/// seconds that a 16-bit integer holds.
std::optional<std::int16_t> LengthInDifference(std::string_view value);

/// The difference row's text for a length: "Length=" + seconds.
std::string LengthDifference(std::string_view seconds);

}  // namespace quillon
