#include "id3/tag_comparison.h"

#include <cmath>
#include <cstdint>
#include <optional>

#include "id3/difference_fields.h"
#include "id3/length_text.h"
#include "id3/tag_agreement.h"
#include "platform/basic_text.h"
#include "platform/failure.h"

namespace quillon {
namespace {

/// Lengths that are measured by different programs differ by a second or two.
constexpr double TooFarApart = 3;

/// The number of seconds that a tag tells; what is no number stays as it is, to be seen.
std::string TagSeconds(std::string_view comment) {
    constexpr double Largest = 1e15;
    std::string text = LengthInComment(comment).value_or("");
    const std::optional<double> number = ToNumber(text);
    if (!number || std::abs(*number) > Largest) return text;
    return std::to_string(static_cast<std::int64_t>(std::nearbyint(*number)));
}

bool LengthsDisagree(std::string_view tag, std::string_view database) {
    const std::optional<double> ofTag = ToNumber(tag), ofDatabase = ToNumber(database);
    if (ofTag && ofDatabase) return std::abs(*ofTag - *ofDatabase) >= TooFarApart;
    return tag != database;
}

bool Agrees(std::size_t piece, std::string_view value, std::string_view expected) {
    switch (piece) {
        case TagSong:
            return TagAgreesWithTitle(value, expected);
        case TagArtist:
        case TagAlbum:
            return TagAgreesWithName(value, expected);
        default:
            return TagAgrees(value, expected);
    }
}

}  // namespace

bool TitleDiffers(std::span<const std::string> pieces, std::string_view title) {
    const std::string_view value = Trim(pieces[TagSong]);
    return !value.empty() && !title.empty() && !TagAgreesWithTitle(value, title);
}

void RequireClearRecord(std::span<const std::string> pieces) {
    if (pieces.size() <= RecordPieces) return;
    throw Failure(FailureNumber::SubscriptOutOfRange,
                  "tag record of " + std::to_string(pieces.size()) + " pieces");
}

TagComparison CompareTag(std::span<const std::string> pieces, const ExpectedTag& expected,
                         std::string_view databaseSeconds) {
    RequireClearRecord(pieces);
    TagComparison result;
    bool differs = false;
    for (std::size_t piece = 0; piece < pieces.size(); ++piece) {
        if (expected[piece].empty()) continue;
        const std::string_view value = Trim(pieces[piece]);
        if (value.empty() || Agrees(piece, value, expected[piece])) continue;
        differs = true;
        if (piece == TagSong) result.titleDiffers = true;
        // Numbers are the library's own affair: they are handed out by the age of the files.
        if (piece == TagTrack) continue;
        result.differences.push_back(
            {std::string(TagLabels.at(piece)), std::string(value), expected[piece]});
    }

    const std::string seconds = TagSeconds(pieces[TagComment]);
    if (LengthsDisagree(seconds, databaseSeconds)) {
        differs = true;
        result.differences.push_back({std::string(TagLabels[TagComment]), LengthDifference(seconds),
                                      LengthDifference(databaseSeconds)});
    }
    result.seconds = seconds;

    result.track = pieces[TagTrack];
    if (differs && result.track.empty()) {
        result.differences.push_back({std::string(TrackNumberMissing), "", ""});
        result.track = "-1";
    }
    return result;
}

}  // namespace quillon
