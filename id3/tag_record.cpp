#include "id3/tag_record.h"

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

/// Comment, Ver and Track. Version 1.1 gives the comment's last two bytes to the track number.
std::string CommentAndTrack(std::span<const std::uint8_t> comment) {
    const unsigned track = comment[TrackByte];
    if (comment[ZeroByte] == 0 && track > 0 && track < 256) {
        return ConvertTheBinary(comment.first(ShortComment)) + "||" + std::to_string(track) + "|";
    }
    return ConvertTheBinary(comment) + "|||";
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
        if (UpperCase(marker) == "TAG") record = marker + "|";
    });
    if (record.empty()) return record;
    for (const Field field : {Song, Artist, Album, Year})
        attempt(6, [&] { record += text(field) + "|"; });
    attempt(9, [&] { record += CommentAndTrack(read(Comment.offset, Comment.length)); });
    attempt(10, [&] { record += genreName(read(Genre.offset, Genre.length).front()) + "|"; });
    return record;
}

}  // namespace quillon
