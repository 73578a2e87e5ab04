#include "tags/tag.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "platform/ansi.h"
#include "platform/ascii.h"
#include "platform/basic_text.h"
#include "platform/utf8.h"

namespace quillon {
namespace {

/// Where the comment lies. Version 1.1 gives its last two bytes to the track number.
constexpr std::size_t CommentAt = 97, LongComment = 30, ShortComment = 28;
constexpr std::size_t ZeroByteAt = 125, TrackAt = 126;

bool HoldsTrack(std::span<const std::uint8_t> tag) {
    return tag[ZeroByteAt] == 0 && tag[TrackAt] > 0;
}

bool AreZero(std::string_view bytes) {
    while (!bytes.empty()) {
        if (ascii::TakeBlock(bytes) != 0) return false;
    }
    return true;
}

std::string WithoutZeroBytes(std::span<const std::uint8_t> bytes) {
    const std::string_view all(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    std::size_t end = std::min(all.find('\0'), all.size());
    std::string text(all.substr(0, end));
    // Nearly always nothing comes behind the zero bytes that fill a field.
    while (!AreZero(all.substr(end))) {
        const std::size_t at = all.find_first_not_of('\0', end);
        end = std::min(all.find('\0', at), all.size());
        text += all.substr(at, end - at);
    }
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
    std::size_t position = ascii::PrefixLength(bytes);
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

std::string TagRecord(const Tag& tag) {
    std::string record;
    if (!tag.IsThere()) return record;
    for (const TagField& field : TagFields) {
        record += tag.*field.text;
        record += '|';
    }
    return record;
}

std::size_t PiecesOf(const Tag& tag) {
    std::size_t pieces = TagFields.size();
    if (!tag.isRecorded) return pieces;
    for (const TagField& field : TagFields) {
        const std::string& text = tag.*field.text;
        for (std::size_t bar = text.find('|'); bar != std::string::npos;
             bar = text.find('|', bar + 1))
            ++pieces;
    }
    return pieces;
}

Tag AsRecorded(Tag tag) {
    if (PiecesOf(tag) == TagFields.size()) return tag;
    std::vector<std::string> pieces = Split(TagRecord(tag), "|");
    for (std::size_t i = 0; i < TagFields.size(); ++i)
        tag.*TagFields[i].text = std::move(pieces[i]);
    return tag;
}

bool IsFullField(std::span<const std::uint8_t> bytes) {
    const auto end = bytes.last(std::min<std::size_t>(bytes.size(), 2));
    return std::any_of(end.begin(), end.end(), [](std::uint8_t byte) { return byte != 0; });
}

bool IsUtf8Field(std::span<const std::uint8_t> bytes) {
    return Utf8Size(WithoutZeroBytes(bytes), IsFullField(bytes)).has_value();
}

std::string ConvertTheBinary(std::span<const std::uint8_t> bytes) {
    std::string text = WithoutZeroBytes(bytes);
    // The code page and UTF-8 have the characters of ASCII in common.
    if (IsAscii(text)) return text;
    if (const auto size = Utf8Size(text, IsFullField(bytes))) {
        text.resize(*size);
        return text;
    }
    return AnsiToUtf8(std::string_view(text));
}

std::span<const std::uint8_t> BytesOfField(std::span<const std::uint8_t> tag,
                                           std::string Tag::* field) {
    if (field == &Tag::comment)
        return tag.subspan(CommentAt, HoldsTrack(tag) ? ShortComment : LongComment);
    std::size_t offset = 0;
    for (const TagField& each : TagFields) {
        if (each.text == field) return tag.subspan(offset, each.length);
        offset += each.length;
    }
    return {};
}

Tag TagIn(std::span<const std::uint8_t> bytes) {
    Tag tag;
    if (bytes.size() != TagSize) return tag;
    for (const TagField& field : TagFields) {
        if (field.text == &Tag::ver) break;
        tag.*field.text = ConvertTheBinary(BytesOfField(bytes, field.text));
        const bool isMarker = field.text == &Tag::marker;
        if (isMarker && !EqualIgnoringCase(tag.marker, "TAG")) return {};
    }
    if (HoldsTrack(bytes)) tag.track = std::to_string(bytes[TrackAt]);
    return tag;
}

}  // namespace quillon
