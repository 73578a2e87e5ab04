#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "jet/schema.h"
#include "jet/value.h"

namespace jet::storage {

/// UTF-16 of a UTF-8 text and back. Lone surrogates survive both ways (as three-byte sequences in
/// the UTF-8); other malformed UTF-8 becomes U+FFFD.
std::u16string ToUtf16(std::string_view utf8);
std::string ToUtf8(std::u16string_view utf16);

/// A Text or Memo value's bytes: plain UTF-16LE, or the compressed form where `mayCompress` (the
/// column's flag) and the text allow it.
Bytes EncodeText(std::u16string_view text, bool mayCompress, bool isMemo);
/// The same for UTF-8, behind what `bytes` holds.
void AppendText(Bytes& bytes, std::string_view utf8, bool mayCompress, bool isMemo);
/// Whether all bytes are those of ASCII characters other than zero, as in nearly all texts.
bool IsPlainAscii(std::string_view text);
/// Whether it is UTF-8 of characters that are one UTF-16 unit each and neither zero nor a
/// surrogate: such a text comes back from the storage as it is. Some other texts do, too.
bool IsUsualText(std::string_view text);
/// Which form it is.
bool IsCompressedText(std::span<const std::uint8_t> bytes);
/// Reads either form. Never fails: whatever the bytes are, they are some text.
std::string DecodeText(std::span<const std::uint8_t> bytes);
/// The same, put into `text`, whose memory is used again.
void DecodeText(std::span<const std::uint8_t> bytes, std::string& text);
/// The text's UTF-16 units, from its beginning on as many as there is room for; how many these are.
std::size_t DecodeUnits(std::span<const std::uint8_t> bytes, std::span<char16_t> units);
/// How many units the text has.
std::size_t CountUnits(std::span<const std::uint8_t> bytes);

/// The bytes of a value of a fixed-size type or of Binary (everything but Boolean, Text, Memo and
/// Ole). Error(TypeMismatch) unless the value has the alternative that jet::Value documents for
/// `type`; Error(Overflow) if it is out of the type's range.
Bytes EncodeScalar(const Value& value, ColumnType type, std::uint8_t decimalScale);
/// The same behind what `bytes` holds.
void AppendScalar(Bytes& bytes, const Value& value, ColumnType type, std::uint8_t decimalScale);
/// The same for a fixed-size type, put into a place of that size.
void StoreScalar(std::span<std::uint8_t> place, const Value& value, ColumnType type,
                 std::uint8_t decimalScale);
/// The reverse; `bytes` has the type's full size.
Value DecodeScalar(std::span<const std::uint8_t> bytes, ColumnType type, std::uint8_t decimalScale);

/// The same number with another scale; digits that fall off round half away from zero.
/// Error(Overflow) if the magnitude would exceed its 128 bits.
Decimal Rescale(const Decimal& decimal, std::uint8_t scale);

/// Bytes that a fixed-size type takes in a row (0 for Boolean and for variable types).
std::size_t FixedSize(ColumnType type);

}  // namespace jet::storage
