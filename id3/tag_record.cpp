#include "id3/tag_record.h"

#include <utility>

#include "platform/ansi.h"
#include "platform/basic_text.h"

namespace quillon {
namespace {

/// A stretch of the tag.
struct Field {
    std::size_t offset;
    std::size_t length;
};

constexpr Field Marker{0, 3}, Song{3, 30}, Artist{33, 30}, Album{63, 30}, Year{93, 4},
    Comment{97, 30}, Genre{127, 1};

/// Where a version 1.1 comment ends, and its zero byte and track number behind that.
constexpr std::size_t ShortComment = 28, ZeroByte = 28, TrackByte = 29;

bool IsMarker(const std::string& text) {
    return UpperCase(text) == "TAG";
}

struct CommentAndTrack {
    std::string comment;
    std::string track;  ///< decimal digits, or empty
};

/// Version 1.1 gives the comment's last two bytes to the track number.
CommentAndTrack SplitComment(std::span<const std::uint8_t> bytes) {
    const unsigned track = bytes[TrackByte];
    if (bytes[ZeroByte] == 0 && track > 0 && track < 256)
        return {ConvertTheBinary(bytes.first(ShortComment)), std::to_string(track)};
    return {ConvertTheBinary(bytes), ""};
}

}  // namespace

std::string ConvertTheBinary(std::span<const std::uint8_t> bytes) {
    std::vector<std::uint8_t> characters(bytes.begin(), bytes.end());
    std::erase(characters, std::uint8_t{0});
    return AnsiToUtf8(std::span<const std::uint8_t>(characters));
}

std::string TagRecord(const ReadTagBytes& read, const TryTagStep& attempt,
                      const GenreName& genreName) {
    const auto text = [&read](Field field) {
        return ConvertTheBinary(read(field.offset, field.length));
    };
    std::string record;
    attempt(4, [&] {
        const std::string marker = text(Marker);
        if (IsMarker(marker)) record = marker + "|";
    });
    if (record.empty()) return record;
    for (const Field field : {Song, Artist, Album, Year})
        attempt(6, [&] { record += text(field) + "|"; });
    attempt(9, [&] {
        const CommentAndTrack split = SplitComment(read(Comment.offset, Comment.length));
        record += split.comment + "||" + split.track + "|";
    });
    attempt(10, [&] { record += genreName(read(Genre.offset, Genre.length).front()) + "|"; });
    return record;
}

std::array<std::string, 9> TagTexts(std::span<const std::uint8_t> tag) {
    const auto text = [tag](Field field) {
        return ConvertTheBinary(tag.subspan(field.offset, field.length));
    };
    if (tag.size() != TagSize || !IsMarker(text(Marker))) return {};
    CommentAndTrack split = SplitComment(tag.subspan(Comment.offset, Comment.length));
    return {text(Marker),  text(Song), text(Artist),           text(Album), text(Year),
            split.comment, "",         std::move(split.track), ""};
}

}  // namespace quillon
