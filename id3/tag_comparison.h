#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// Pieces of a whole tag record that is split at "|"; the last one is empty.
constexpr std::size_t RecordPieces = 10;

/// What a file's tag should hold, by the places of the record; "" where nothing is expected.
using ExpectedTag = std::array<std::string, RecordPieces>;

/// One row for the difference table.
struct TagDifference {
    std::string field;
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

/// Whether the title of a record, whose pieces these are, is another one than that in the file's
/// name.
bool TitleDiffers(std::span<const std::string> pieces, std::string_view title);

/// Failure: SubscriptOutOfRange for a record of too many pieces, which a "|" inside a field makes:
/// none of them can be told from its neighbours then.
void RequireClearRecord(std::span<const std::string> pieces);

/// Compares a clear record's pieces with what is expected. Lengths in seconds may differ by two.
TagComparison CompareTag(std::span<const std::string> pieces, const ExpectedTag& expected,
                         std::string_view databaseSeconds);

}  // namespace quillon
