#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace quillon {

/// Bytes of an ID3 version 1 tag, which ends the file.
constexpr std::size_t TagSize = 128;

/// What a file's tag says: that of ID3 version 1, or where all kinds of tags are read, those
/// together with texts in full. Each field is as it stands there: blanks that fill a field belong
/// to it. The fields up to the genre are empty where there is no tag.
struct Tag {
    std::string marker;  ///< "TAG" in any letter case
    std::string song, artist, album, year, comment;
    std::string ver = {};  ///< nothing is ever read into it
    std::string track;     ///< decimal digits; "" without a number
    std::string genre;     ///< a name

    // What version 1 does not tell.
    std::string disc = {};     ///< decimal digits; "" without a number
    std::string seconds = {};  ///< length, by the comment or else by the sound; "" if not known
    /// Whether it is told by a record, where a "|" in a field shifts what is behind it.
    bool isRecorded = true;

    bool IsThere() const { return !marker.empty(); }
    bool operator==(const Tag&) const = default;
};

/// Labels of the fields as `SpinnerID3Differences.Field` holds them.
namespace tag_label {
constexpr std::string_view Marker = "Tag", Song = "Song", Artist = "Artist", Album = "Album",
                           Year = "Year", Comment = "Comment", Ver = "Ver", Track = "Track",
                           Genre = "Genre";
/// That of the row that tells of a tag without a track number.
constexpr std::string_view TrackNumberMissing = "Track Number Missing";
}  // namespace tag_label

/// One of the fields, and how many bytes it takes in a tag of version 1.1.
struct TagField {
    std::string_view label;
    std::size_t length;
    std::string Tag::* text;
};

/// In the order of the tag. Ver is the zero byte between comment and track number.
constexpr std::array<TagField, 9> TagFields{{{tag_label::Marker, 3, &Tag::marker},
                                             {tag_label::Song, 30, &Tag::song},
                                             {tag_label::Artist, 30, &Tag::artist},
                                             {tag_label::Album, 30, &Tag::album},
                                             {tag_label::Year, 4, &Tag::year},
                                             {tag_label::Comment, 28, &Tag::comment},
                                             {tag_label::Ver, 1, &Tag::ver},
                                             {tag_label::Track, 1, &Tag::track},
                                             {tag_label::Genre, 1, &Tag::genre}}};

/// The tag record: the nine fields, each with a "|" behind it; "" for no tag.
std::string TagRecord(const Tag& tag);

/// How many pieces with a "|" behind them its record has: nine, and one more for each "|" in a
/// field. A tag that is not told by a record always has nine.
std::size_t PiecesOf(const Tag& tag);

/// The tag as its record tells it. Nothing is escaped there: a "|" in a field shifts what is behind
/// it, and what comes behind the ninth piece is lost.
Tag AsRecorded(Tag tag);

/// Text of a field's bytes: zero bytes are dropped wherever they stand, blanks stay. Bytes that are
/// well-formed UTF-8 with a character beyond ASCII are read as that, since many encoders write it;
/// a character that the end of the field has cut is left out. All others are characters of the ANSI
/// code page.
std::string ConvertTheBinary(std::span<const std::uint8_t> bytes);

/// Whether a field's bytes are read as UTF-8.
bool IsUtf8Field(std::span<const std::uint8_t> bytes);

/// Whether the text reaches the field's end, where more of it may have been cut off. Some programs
/// keep a last zero byte.
bool IsFullField(std::span<const std::uint8_t> bytes);

/// The bytes of a text field in a tag's 128 bytes: song, artist, album, year or comment, which is
/// shorter where a track number follows it.
std::span<const std::uint8_t> BytesOfField(std::span<const std::uint8_t> tag,
                                           std::string Tag::* field);

/// The number of the genre in a tag's 128 bytes.
inline std::uint8_t GenreNumberIn(std::span<const std::uint8_t> tag) {
    return tag.back();
}

/// What the last bytes of a file say; no tag when they are none. The genre, which needs a name, is
/// left empty.
Tag TagIn(std::span<const std::uint8_t> bytes);

}  // namespace quillon
