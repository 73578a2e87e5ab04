#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// The one place where bytes of the ANSI code page, Windows-1252, become text and back. All 256
/// bytes have a character (the five that the code page leaves open are U+0081, U+008D, U+008F,
/// U+0090 and U+009D, as Windows reads them), so that every byte survives a round trip.
namespace quillon {

/// UTF-8 text of ANSI bytes.
std::string AnsiToUtf8(std::span<const std::uint8_t> bytes);
std::string AnsiToUtf8(std::string_view bytes);

/// ANSI bytes of a UTF-8 text, '?' for a character that the code page lacks.
std::string Utf8ToAnsi(std::string_view text);

/// ANSI bytes of a UTF-8 text, or nothing when a character has none.
std::optional<std::string> Utf8ToAnsiExactly(std::string_view text);

/// Whether all bytes stand for the same characters in UTF-8 and in the code page.
bool IsAscii(std::string_view bytes);

/// Whether the bytes are well-formed UTF-8 (shortest forms, no surrogates).
bool IsValidUtf8(std::string_view bytes);

/// The text itself when it is well-formed UTF-8; else with every stray byte read as ANSI, so that
/// whatever comes from outside can be shown and stored as text.
std::string ToValidUtf8(std::string_view bytes);

/// Length in UTF-16 units, the measure of Windows names and of database fields.
std::size_t Utf16Length(std::string_view text);

}  // namespace quillon
