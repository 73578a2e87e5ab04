#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// UTF-8 by the character, for the text modules of this folder.
namespace quillon {

/// One character of a UTF-8 text.
struct Utf8Character {
    char32_t code = 0;       ///< the byte itself where no character starts
    std::size_t length = 1;  ///< bytes it takes
    /// Shortest form and no surrogate. A surrogate's three-byte form is one character that is not
    /// well-formed; every other byte that fits nowhere stands alone.
    bool wellFormed = true;
};

/// The character that starts at `position`, which must be inside the text.
Utf8Character DecodeUtf8(std::string_view text, std::size_t position);

/// Appends a character's UTF-8 form; U+FFFD for what is no character.
void AppendUtf8(std::string& text, char32_t code);

}  // namespace quillon
