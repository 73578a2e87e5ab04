// The tag parser over arbitrary bytes: whatever a file ends with, a tag comes out of it or none,
// and its record has nine closed fields at least. The comparison then takes every such tag, against
// the names that its own fields make.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

#include "id3/tag_comparison.h"
#include "platform/ansi.h"
#include "platform/failure.h"
#include "tags/tag.h"

namespace {

/// What is noted for a field must be a label, a value that differs, and no more than one row each.
void Compare(const quillon::Tag& tag) {
    const quillon::ExpectedTag expected{.song = tag.artist,
                                        .artist = tag.album,
                                        .album = tag.year,
                                        .track = tag.comment,
                                        .genre = tag.song};
    const quillon::TagComparison result = quillon::CompareTag(tag, expected, tag.track);
    if (result.differences.size() > quillon::TagFields.size() + 2) std::abort();
    for (const quillon::TagDifference& difference : result.differences) {
        if (!quillon::IsValidUtf8(difference.tagValue)) std::abort();
        if (!difference.tagValue.empty() && difference.tagValue == difference.expected)
            std::abort();
    }
}

/// Only a tag whose record nobody could take apart is refused.
void RequireCompared(const quillon::Tag& tag) {
    const bool isClear = quillon::PiecesOf(tag) == quillon::TagFields.size();
    try {
        Compare(tag);
        if (!isClear) std::abort();
    } catch (const quillon::Failure&) {
        if (isClear) std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    quillon::Tag tag = quillon::TagIn(std::span(data, size));
    if (!tag.IsThere()) return 0;
    tag.genre = "Genre " + std::to_string(quillon::GenreNumberIn(std::span(data, size)));

    const std::string record = quillon::TagRecord(tag);
    if (!quillon::IsValidUtf8(record)) std::abort();
    if (record.find('\0') != std::string::npos) std::abort();
    const auto bars = static_cast<std::size_t>(std::count(record.begin(), record.end(), '|'));
    if (record.back() != '|' || bars != quillon::PiecesOf(tag)) std::abort();
    if (quillon::PiecesOf(quillon::AsRecorded(tag)) != quillon::TagFields.size()) std::abort();
    RequireCompared(tag);
    return 0;
}
