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

/// Whether a tag's value, which is not empty, and the expected one agree over the length of the
/// shorter, letter case aside: a field of 30 bytes cuts long texts. Characters that the tag's code
/// page lacks can only stand as "?" in it, and agree as such.
bool TagAgrees(std::string_view value, std::string_view expected);

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
    std::string seconds;  ///< length for the track's row: the database's own, else the tag's
};

/// Compares a record's pieces, `RecordPieces` at least, with what is expected. Lengths in seconds
/// may differ by two. Failure: SubscriptOutOfRange for more pieces, which a "|" inside a field
/// makes: none of them can be told from its neighbours then.
TagComparison CompareTag(std::span<const std::string> pieces, const ExpectedTag& expected,
                         std::string_view databaseSeconds);

}  // namespace quillon
