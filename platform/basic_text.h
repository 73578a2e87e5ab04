#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Texts, numbers and truth values by the rules of the classic Basic runtime. All texts are UTF-8.
namespace quillon {

/// Letters in lower or upper case: the whole of Unicode, one character for one, as far as the two
/// are a pair on Windows. So the letters whose other case belongs to another letter (the micro
/// sign, the long s, the dotless i) stay as they are, and so does the sharp s.
std::string LowerCase(std::string_view text);
std::string UpperCase(std::string_view text);

/// Whether two texts are equal when letter case does not count.
bool EqualIgnoringCase(std::string_view left, std::string_view right);

/// How many bytes at the beginning of a text say this, letter case aside; nothing where it begins
/// with something else.
std::optional<std::size_t> BeginningIn(std::string_view text, std::string_view beginning);

/// Orders names as a Windows volume lists them: by the UTF-16 units of their upper case. Names that
/// differ in letter case alone are ordered by code, so that every order is the only one.
bool WindowsNameLess(std::string_view left, std::string_view right);

/// Without blanks (U+0020 only) at either end.
std::string_view Trim(std::string_view text);

/// The pieces between separators; a text without separator is one piece. An empty text is no piece
/// at all, as with the runtime's Split.
std::vector<std::string> Split(std::string_view text, std::string_view separator);

/// Every occurrence replaced; comparison is exact. An empty `from` changes nothing.
std::string Replace(std::string_view text, std::string_view from, std::string_view to);

/// The last `count` characters; the whole text when it is shorter.
std::string_view Right(std::string_view text, std::size_t count);

/// Whether the runtime can read the text as a number: blanks around it, a sign before or behind,
/// parentheses for a negative one, digits with or without thousands separators, a decimal point,
/// an exponent (E or D), a currency sign, &H and &O forms. Beyond the range of a double it is none.
bool IsNumeric(std::string_view text);

/// The number a numeric text stands for; empty when it is not numeric.
std::optional<double> ToNumber(std::string_view text);

/// A 16-bit integer, halves rounded to the even neighbour. Of &H and &O forms that need all 16 bits
/// the first bit is the sign (&HFFFF is -1). Failure: TypeMismatch for a text that is not a number,
/// Overflow outside -32768..32767.
std::int16_t ToInteger(std::string_view text);
std::int16_t ToInteger(double number);

/// A 32-bit integer by the same rules (&HFFFFFFFF is -1).
std::int32_t ToLong(std::string_view text);

/// "True" or "False" in any letter case, with or without "#" around it, or a number (0 is false).
/// Failure: TypeMismatch.
bool ToBoolean(std::string_view text);

}  // namespace quillon
