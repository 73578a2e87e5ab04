// The tag parser over arbitrary bytes: whatever a file ends with, a record comes out, and a whole
// tag gives nine closed fields at least. The comparison then takes every such record, against the
// names that its own neighbours make.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "id3/difference_fields.h"
#include "id3/tag_comparison.h"
#include "id3/tag_record.h"
#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/failure.h"

namespace {

/// What is noted for a field must be a label, a value that differs, and no more than one row each.
void Compare(const std::vector<std::string>& pieces) {
    quillon::ExpectedTag expected;
    for (std::size_t i = 0; i < expected.size(); ++i)
        expected.at(i) = pieces.at((i + 1) % pieces.size());
    const std::string& seconds = pieces.at(quillon::TagTrack);
    try {
        const quillon::TagComparison result = quillon::CompareTag(pieces, expected, seconds);
        if (pieces.size() > quillon::RecordPieces) std::abort();
        if (result.differences.size() > quillon::RecordPieces + 2) std::abort();
        for (const quillon::TagDifference& difference : result.differences) {
            if (!quillon::IsValidUtf8(difference.tagValue)) std::abort();
            if (!difference.tagValue.empty() && difference.tagValue == difference.expected)
                std::abort();
        }
    } catch (const quillon::Failure&) {
        if (pieces.size() <= quillon::RecordPieces) std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span<const std::uint8_t> tag(data, size);
    std::array<std::string, 256> genres;
    for (std::size_t i = 0; i < genres.size(); i += 2)
        genres[i] = "Genre " + std::to_string(i);

    bool failed = false;
    const auto read = [&tag](std::size_t offset, std::size_t count) {
        if (offset + count > tag.size()) throw std::runtime_error("past the end");
        const auto bytes = tag.subspan(offset, count);
        return std::vector<std::uint8_t>(bytes.begin(), bytes.end());
    };
    const auto attempt = [&failed](int, const std::function<void()>& work) {
        try {
            work();
            return true;
        } catch (const std::runtime_error&) {
            failed = true;
            return false;
        }
    };
    const std::string record = quillon::TagRecord(
        read, attempt, [&genres](std::uint8_t number) { return genres[number]; });

    if (!quillon::IsValidUtf8(record)) std::abort();
    if (record.find('\0') != std::string::npos) std::abort();
    if (!record.empty() && record.back() != '|') std::abort();
    if (!record.empty() && !failed && std::count(record.begin(), record.end(), '|') < 9)
        std::abort();
    const std::vector<std::string> pieces = quillon::Split(record, "|");
    if (pieces.size() >= quillon::RecordPieces) Compare(pieces);
    return 0;
}
