#include "id3/tag_record.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/utf8.h"

namespace quillon {
namespace {

/// A stretch of the tag.
struct Field {
    std::size_t offset;
    std::size_t length;
};

constexpr Field Marker{0, 3}, Song{3, 30}, Artist{33, 30}, Album{63, 30}, Year{93, 4},
    Comment{97, 30}, Genre{127, 1};
constexpr std::array TextFields{Marker, Song, Artist, Album, Year, Comment};

/// Where a version 1.1 comment ends, and its zero byte and track number behind that.
constexpr std::size_t ShortComment = 28, ZeroByte = 28, TrackByte = 29;

bool IsMarker(const std::string& text) {
    return UpperCase(text) == "TAG";
}

/// Version 1.1 gives the comment's last two bytes to the track number.
bool HoldsTrack(std::span<const std::uint8_t> comment) {
    const unsigned track = comment[TrackByte];
    return comment[ZeroByte] == 0 && track > 0 && track < 256;
}

struct CommentAndTrack {
    std::string comment;
    std::string track;  ///< decimal digits, or empty
};

CommentAndTrack SplitComment(std::span<const std::uint8_t> bytes) {
    if (!HoldsTrack(bytes)) return {ConvertTheBinary(bytes), ""};
    return {ConvertTheBinary(bytes.first(ShortComment)), std::to_string(bytes[TrackByte])};
}

std::string WithoutZeroBytes(std::span<const std::uint8_t> bytes) {
    std::string text(bytes.begin(), bytes.end());
    std::erase(text, '\0');
    return text;
}

/// Whether the bytes are the beginning of a UTF-8 character.
bool BeginsCharacter(std::string_view bytes) {
    constexpr std::size_t Longest = 4;
    // Which bytes may follow depends on the first one, but for one of these two all of them do.
    for (const char following : {'\x80', '\xBF'}) {
        std::string whole(bytes);
        while (whole.size() < Longest) {
            whole += following;
            const Utf8Character character = DecodeUtf8(whole, 0);
            if (character.wellFormed && character.length == whole.size()) return true;
        }
    }
    return false;
}

/// How much of the bytes is text in UTF-8; nothing when they are something else, or ASCII.
std::optional<std::size_t> Utf8Size(std::string_view bytes, bool isFull) {
    bool beyondAscii = false;
    std::size_t position = 0;
    while (position < bytes.size()) {
        const Utf8Character character = DecodeUtf8(bytes, position);
        if (!character.wellFormed) {
            if (isFull && beyondAscii && BeginsCharacter(bytes.substr(position))) return position;
            return std::nullopt;
        }
        beyondAscii |= character.length > 1;
        position += character.length;
    }
    if (!beyondAscii) return std::nullopt;
    return position;
}

}  // namespace

bool IsFullField(std::span<const std::uint8_t> bytes) {
    const auto end = bytes.last(std::min<std::size_t>(bytes.size(), 2));
    return std::any_of(end.begin(), end.end(), [](std::uint8_t byte) { return byte != 0; });
}

bool IsUtf8Field(std::span<const std::uint8_t> bytes) {
    return Utf8Size(WithoutZeroBytes(bytes), IsFullField(bytes)).has_value();
}

std::string ConvertTheBinary(std::span<const std::uint8_t> bytes) {
    const std::string text = WithoutZeroBytes(bytes);
    if (const auto size = Utf8Size(text, IsFullField(bytes))) return text.substr(0, *size);
    return AnsiToUtf8(std::string_view(text));
}

std::span<const std::uint8_t> FieldBytes(std::span<const std::uint8_t> tag, std::size_t piece) {
    const Field field = TextFields.at(piece);
    const auto bytes = tag.subspan(field.offset, field.length);
    const bool isShort = field.offset == Comment.offset && HoldsTrack(bytes);
    return isShort ? bytes.first(ShortComment) : bytes;
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
