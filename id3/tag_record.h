#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace quillon {

/// Bytes of an ID3 version 1 tag, which ends the file.
constexpr std::size_t TagSize = 128;

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

/// Hands out `count` bytes of the tag from `offset` on; throws when it cannot.
using ReadTagBytes =
    std::function<std::vector<std::uint8_t>(std::size_t offset, std::size_t count)>;

/// Runs one numbered step and keeps its failure to itself; whether it succeeded.
using TryTagStep = std::function<bool(int step, const std::function<void()>& work)>;

/// Name of the genre with this number; "" where there is none.
using GenreName = std::function<std::string(std::uint8_t number)>;

/// The tag record of a tag's bytes: the nine fields Tag, Song, Artist, Album, Year, Comment, Ver,
/// Track and Genre, each followed by "|"; "" when the bytes are no tag. A field whose step fails
/// contributes nothing, not even its "|".
std::string TagRecord(const ReadTagBytes& read, const TryTagStep& attempt,
                      const GenreName& genreName);

/// The bytes of a text field in a tag's 128 bytes: Tag, Song, Artist, Album, Year or Comment, which
/// is shorter where a track number follows it.
std::span<const std::uint8_t> FieldBytes(std::span<const std::uint8_t> tag, std::size_t piece);

/// The texts of a tag's 128 bytes by their pieces (id3/difference_fields.h), each as the record
/// holds it, wherever a "|" may stand in one of them. Ver is empty, and so is Genre, which needs a
/// name. All are empty when the bytes are no tag.
std::array<std::string, 9> TagTexts(std::span<const std::uint8_t> tag);

}  // namespace quillon
