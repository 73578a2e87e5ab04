#include "picker/modern/letters.h"

#include <array>
#include <cstddef>
#include <utility>

#include "platform/basic_text.h"
#include "platform/utf8.h"

namespace quillon {
namespace {

constexpr char32_t FirstAccented = 0xC0, EndOfAccented = 0x180, EndOfAlphabets = 0x700;
constexpr std::string_view EighthNote = "\u266A";

/// The letters behind U+00C0 to U+017F; a blank for what is none.
constexpr std::string_view Plain =
    "AAAAAAACEEEEIIIIDNOOOOO OUUUUYTsaaaaaaaceeeeiiiidnooooo ouuuuyty"
    "AaAaAaCcCcCcCcDdDdEeEeEeEeEeGgGgGgGgHhHhIiIiIiIiIiIiJjKkkLlLlLlL"
    "lLlNnNnNnnNnOoOoOoOoRrRrRrSsSsSsSsTtTtTtUuUuUuUuUuUuWwYyYZzZzZzs";
static_assert(Plain.size() == EndOfAccented - FirstAccented);

bool IsWithin(char32_t code, char32_t first, char32_t last) {
    return code >= first && code <= last;
}

bool IsDigit(char32_t code) {
    return IsWithin(code, U'0', U'9');
}

/// A letter as a name's heading has it: accents are gone. Nothing (0) for what is no letter.
char32_t LetterIn(const Utf8Character& character) {
    const char32_t code = character.code;
    if (!character.wellFormed) return 0;
    if (IsWithin(code, U'A', U'Z') || IsWithin(code, U'a', U'z')) return code;
    if (code < FirstAccented) return 0;
    if (code < EndOfAccented) {
        const char plain = Plain[code - FirstAccented];
        if (plain == ' ') return 0;
        return static_cast<char32_t>(plain);
    }
    // Accents by themselves, punctuation, marks of direction, signs, private and special ones.
    const bool isSign = IsWithin(code, 0x02B0, 0x036F) || IsWithin(code, 0x0590, 0x05CF) ||
                        IsWithin(code, 0x0600, 0x061F) || IsWithin(code, 0x064B, 0x066D) ||
                        IsWithin(code, 0x2000, 0x2BFF) || IsWithin(code, 0x3000, 0x3004) ||
                        IsWithin(code, 0x3007, 0x3030) || IsWithin(code, 0xE000, 0xF8FF) ||
                        IsWithin(code, 0xFE00, 0xFE0F) || code >= 0xFFF0;
    return isSign && !IsWithin(code, 0x20000, 0x3FFFF) ? U'\0' : code;
}

std::string Large(char32_t letter) {
    std::string text;
    AppendUtf8(text, letter);
    return UpperCase(text);
}

/// Where a heading's kind comes in the order.
int RankOf(std::string_view letter) {
    if (letter == NoLetter) return 0;
    if (letter == OtherScripts) return 3;
    return letter.size() == 1 ? 1 : 2;
}

}  // namespace

std::string LetterOf(std::string_view name) {
    for (std::size_t at = 0; at < name.size();) {
        const Utf8Character next = DecodeUtf8(name, at);
        at += next.length;
        if (IsDigit(next.code)) break;
        const char32_t letter = LetterIn(next);
        if (letter == 0) continue;
        return letter < EndOfAlphabets ? Large(letter) : std::string(OtherScripts);
    }
    return std::string(NoLetter);
}

bool LetterLess(std::string_view left, std::string_view right) {
    return std::pair(RankOf(left), left) < std::pair(RankOf(right), right);
}

std::string InitialsOf(std::string_view title) {
    std::string initials;
    int count = 0;
    bool inWord = false;
    for (std::size_t at = 0; at < title.size() && count < 2;) {
        const Utf8Character next = DecodeUtf8(title, at);
        at += next.length;
        const bool isPart = IsDigit(next.code) || LetterIn(next) != 0;
        if (isPart && !inWord) {
            initials += Large(next.code);
            ++count;
        }
        // An apostrophe is within a word, and so is an accent of its own.
        inWord = isPart || (inWord && next.code != ' ' && next.code != '-' && next.code != '/');
    }
    return initials.empty() ? std::string(EighthNote) : initials;
}

}  // namespace quillon
