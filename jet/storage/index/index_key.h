#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "jet/schema.h"
#include "jet/value.h"

namespace jet::storage {

/// Appends one column's part of an index key. Keys compare as unsigned byte strings in the order
/// in which the database sorts the values.
void AppendKey(Bytes& key, const Value& value, ColumnType type, std::uint8_t decimalScale,
               bool ascending);

/// The same for a value that is not Null, from the bytes that a row holds for it; they have the
/// type's size. Not for Boolean and Ole.
void AppendStoredKey(Bytes& key, std::span<const std::uint8_t> stored, ColumnType type,
                     std::uint8_t decimalScale, bool ascending);

/// What stands in a key for Null.
constexpr std::uint8_t NullKey(bool ascending) {
    return ascending ? 0x00 : 0xFF;
}

/// How much of a text counts for its key, in UTF-16 units.
constexpr std::size_t LongestTextInKey = 255;

/// The ascending key of a text without its leading marker byte, in the General Legacy order
/// (language 1033, version 0): letter case and trailing blanks do not count, accents decide after
/// the letters, apostrophe and hyphen last.
void AppendTextKey(Bytes& key, std::u16string_view text);
/// The same for UTF-8.
void AppendTextKey(Bytes& key, std::string_view utf8);
/// The same for a text of ASCII characters that are a letter of one byte and nothing else each;
/// false, and nothing is appended, for any other.
bool AppendPlainTextKey(Bytes& key, std::span<const std::uint8_t> text);

/// Compares two UTF-8 texts as the database orders them: negative, zero or positive. Zero means
/// that their keys are equal.
int CompareTexts(std::string_view left, std::string_view right);

}  // namespace jet::storage
