#include "id3/tag_comparison.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <optional>

#include "id3/tag_agreement.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "tags/length_text.h"

namespace quillon {
namespace {

/// Lengths that are measured by different programs differ by a second or two.
constexpr double TooFarApart = 3;

/// The number of seconds in a tag; a text that is no number stays as it is, so that it is seen.
std::string TagSeconds(const Tag& tag) {
    constexpr double Largest = 1e15;
    if (!tag.seconds.empty()) return tag.seconds;
    const std::optional<LengthMark> length = LengthInComment(tag.comment);
    if (!length) return "";
    const std::optional<double> number = ToNumber(length->seconds);
    if (!number || std::abs(*number) > Largest) return std::string(length->seconds);
    return std::to_string(static_cast<std::int64_t>(std::nearbyint(*number)));
}

bool LengthsDisagree(std::string_view tag, std::string_view database) {
    if (tag == database) return false;
    const std::optional<double> ofTag = ToNumber(tag), ofDatabase = ToNumber(database);
    if (ofTag && ofDatabase) return std::abs(*ofTag - *ofDatabase) >= TooFarApart;
    return true;
}

using Agreement = bool (*)(std::string_view value, std::string_view expected);

/// A field that is compared with what is expected of it.
struct ComparedField {
    std::string_view label;
    std::string_view value;
    std::string_view expected;
    Agreement agrees;
};

std::array<ComparedField, 6> ComparedFields(const Tag& tag, const ExpectedTag& expected) {
    return {{{tag_label::Marker, tag.marker, "TAG", TagAgrees},
             {tag_label::Song, tag.song, expected.song, TagAgreesWithTitle},
             {tag_label::Artist, tag.artist, expected.artist, TagAgreesWithName},
             {tag_label::Album, tag.album, expected.album, TagAgreesWithName},
             {tag_label::Track, tag.track, expected.track, TagAgrees},
             {tag_label::Genre, tag.genre, expected.genre, TagAgrees}}};
}

}  // namespace

bool TitleDiffers(const Tag& tag, std::string_view title) {
    const std::string_view value = Trim(tag.song);
    return !value.empty() && !title.empty() && !TagAgreesWithTitle(value, title);
}

void RequireClearRecord(const Tag& tag) {
    const std::size_t pieces = PiecesOf(tag);
    if (pieces == TagFields.size()) return;
    // One more stands behind the record's last "|".
    throw Failure(FailureNumber::SubscriptOutOfRange,
                  "tag record of " + std::to_string(pieces + 1) + " pieces");
}

TagComparison CompareTag(const Tag& tag, const ExpectedTag& expected,
                         std::string_view databaseSeconds) {
    RequireClearRecord(tag);
    TagComparison result;
    bool differs = false;
    for (const ComparedField& field : ComparedFields(tag, expected)) {
        if (field.expected.empty()) continue;
        const std::string_view value = Trim(field.value);
        if (value.empty() || field.agrees(value, field.expected)) continue;
        differs = true;
        if (field.label == tag_label::Song) result.titleDiffers = true;
        // Numbers are the library's own affair: they are handed out by the age of the files.
        if (field.label == tag_label::Track) continue;
        result.differences.push_back(
            {field.label, std::string(value), std::string(field.expected)});
    }

    result.seconds = TagSeconds(tag);
    if (LengthsDisagree(result.seconds, databaseSeconds)) {
        differs = true;
        result.differences.push_back({tag_label::Comment, LengthDifference(result.seconds),
                                      LengthDifference(databaseSeconds)});
    }

    result.track = tag.track;
    if (differs && result.track.empty()) {
        result.differences.push_back({tag_label::TrackNumberMissing, "", ""});
        result.track = "-1";
    }
    return result;
}

}  // namespace quillon
