#include "tags/length_text.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/ansi.h"
#include "platform/basic_text.h"

namespace quillon {
namespace {

constexpr std::string_view CommentOpening = "Length='";
constexpr std::string_view DifferenceOpening = "Length=";
constexpr std::size_t CommentRoom = 28;

/// Without the blanks at its end, with which older tags fill their fields.
std::string_view WithoutPadding(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

}  // namespace

std::optional<LengthMark> LengthInComment(std::string_view comment) {
    const std::size_t opening = comment.find(CommentOpening);
    if (opening == std::string_view::npos) return std::nullopt;
    const std::string_view rest = comment.substr(opening + CommentOpening.size());
    const std::size_t closing = rest.find('\'');
    return LengthMark{.seconds = rest.substr(0, closing),
                      .isClosed = closing != std::string_view::npos};
}

std::string WholeSecondsIn(std::string_view comment) {
    const std::optional<LengthMark> length = LengthInComment(comment);
    const std::optional<double> number =
        length && length->isClosed ? ToNumber(length->seconds) : std::nullopt;
    if (!number || *number < 0.5 || *number > std::numeric_limits<std::int16_t>::max()) return "";
    return std::to_string(static_cast<std::int64_t>(std::nearbyint(*number)));
}

std::string LengthComment(std::string_view seconds) {
    return std::string(CommentOpening).append(seconds).append("'");
}

std::string CommentWithLength(std::string_view comment, std::string_view seconds) {
    std::string length = LengthComment(seconds);
    // In the code page every character is one byte, as it is in the tag.
    const std::optional<std::string> ansi = Utf8ToAnsiExactly(comment);
    if (!ansi) return std::string(comment);
    const std::string_view old = WithoutPadding(*ansi);
    const std::optional<LengthMark> present = LengthInComment(old);
    if (!present) {
        if (old.empty()) return length;
        const bool fits = old.size() + 1 + length.size() <= CommentRoom;
        return AnsiToUtf8(fits ? std::string(old) + ' ' + length : std::string(old));
    }
    const auto digits = static_cast<std::size_t>(present->seconds.data() - old.data());
    const std::size_t opening = digits - CommentOpening.size();
    const std::string_view before = old.substr(0, std::min(opening, CommentRoom - length.size()));
    const std::string_view behind =
        present->isClosed ? old.substr(digits + present->seconds.size() + 1) : std::string_view();
    const std::size_t room = CommentRoom - before.size() - length.size();
    return AnsiToUtf8(std::string(before) + length + std::string(behind.substr(0, room)));
}

std::optional<std::int16_t> LengthInDifference(std::string_view value) {
    if (value.starts_with(DifferenceOpening)) value.remove_prefix(DifferenceOpening.size());
    const std::optional<double> seconds = ToNumber(value);
    if (!seconds || *seconds < 0 || *seconds > std::numeric_limits<std::int16_t>::max() ||
        std::trunc(*seconds) != *seconds) {
        return std::nullopt;
    }
    return static_cast<std::int16_t>(*seconds);
}

std::string LengthDifference(std::string_view seconds) {
    return std::string(DifferenceOpening).append(seconds);
}

}  // namespace quillon
