#include "reconcile/track_tag.h"

#include <limits>
#include <string>
#include <vector>

#include "platform/basic_text.h"

namespace quillon {
namespace {

constexpr std::size_t CommentPiece = 5, TrackPiece = 7;

/// The text between "Length='" and the next "'"; "" when either is missing.
std::string_view LengthText(std::string_view comment) {
    constexpr std::string_view Opening = "Length='";
    const std::size_t opening = comment.find(Opening);
    if (opening == std::string_view::npos) return "";
    const std::string_view rest = comment.substr(opening + Opening.size());
    const std::size_t closing = rest.find('\'');
    return closing == std::string_view::npos ? "" : rest.substr(0, closing);
}

}  // namespace

TrackTag ReadTrackTag(std::string_view record) {
    TrackTag tag;
    const std::vector<std::string> pieces = Split(record, "|");
    if (pieces.size() <= TrackPiece) return tag;
    if (IsNumeric(pieces[TrackPiece])) tag.track = ToInteger(pieces[TrackPiece]);
    const std::string_view length = LengthText(pieces[CommentPiece]);
    if (IsNumeric(length)) tag.length = ToInteger(length);
    return tag;
}

std::optional<std::int16_t> ReadTrackNumber(std::string_view record) {
    const std::vector<std::string> pieces = Split(record, "|");
    if (pieces.size() <= TrackPiece) return std::nullopt;
    const std::optional<double> number = ToNumber(pieces[TrackPiece]);
    constexpr double Most = std::numeric_limits<std::int16_t>::max();
    if (!number || *number < 0 || *number > Most) return std::nullopt;
    return ToInteger(pieces[TrackPiece]);
}

}  // namespace quillon
