#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tags/tag.h"

namespace quillon {

/// What a file's tag should hold beside its marker; "" where nothing is expected.
struct ExpectedTag {
    std::string_view song, artist, album, track, genre;
};

/// One row for the difference table.
struct TagDifference {
    std::string_view field;  ///< a label, or TrackNumberMissing
    std::string tagValue;
    std::string expected;

    bool operator==(const TagDifference&) const = default;
};

/// What the comparison of a file's tag comes to.
struct TagComparison {
    std::vector<TagDifference> differences;  ///< in the order of the checks
    bool titleDiffers = false;
    std::string track;    ///< the tag's track number, "-1" for a differing tag without one
    std::string seconds;  ///< the tag's length
};

/// Whether a tag's title is another one than that in the file's name.
bool TitleDiffers(const Tag& tag, std::string_view title);

/// Failure: SubscriptOutOfRange for a tag with a "|" in a field, whose record has too many pieces:
/// none of them can be told from its neighbours then.
void RequireClearRecord(const Tag& tag);

/// Compares a tag with what is expected. Lengths in seconds may differ by two. Failure as above.
TagComparison CompareTag(const Tag& tag, const ExpectedTag& expected,
                         std::string_view databaseSeconds);

}  // namespace quillon
