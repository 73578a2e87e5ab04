#include "id3/length_text.h"

#include <cmath>
#include <limits>

#include "platform/basic_text.h"

namespace quillon {
namespace {

constexpr std::string_view CommentOpening = "Length='";
constexpr std::string_view DifferenceOpening = "Length=";

}  // namespace

std::optional<std::string> LengthInComment(std::string_view comment) {
    const std::size_t opening = comment.find(CommentOpening);
    if (opening == std::string_view::npos) return std::nullopt;
    const std::string_view rest = comment.substr(opening + CommentOpening.size());
    return std::string(rest.substr(0, rest.find('\'')));
}

std::string LengthComment(std::string_view seconds) {
    return std::string(CommentOpening).append(seconds).append("'");
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
