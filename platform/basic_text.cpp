#include "platform/basic_text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utf8proc.h>

#include "platform/ascii.h"
#include "platform/utf8.h"

namespace quillon {
namespace {

constexpr char32_t SharpS = 0xDF;
constexpr char32_t CapitalSharpS = 0x1E9E;

char32_t RawLower(char32_t code) {
    return static_cast<char32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(code)));
}

char32_t RawUpper(char32_t code) {
    return static_cast<char32_t>(utf8proc_toupper(static_cast<utf8proc_int32_t>(code)));
}

char32_t ComputedLower(char32_t code) {
    if (code == CapitalSharpS) return code;
    const char32_t lower = RawLower(code);
    return RawUpper(lower) == code ? lower : code;
}

char32_t ComputedUpper(char32_t code) {
    if (code == SharpS) return code;
    const char32_t upper = RawUpper(code);
    return RawLower(upper) == code ? upper : code;
}

/// The letters that most names are made of, at hand: asking for each one again takes many times
/// longer.
struct CommonLetters {
    static constexpr std::size_t Count = 0x600;  // Latin, Greek, Cyrillic, Armenian, Hebrew

    CommonLetters() {
        for (char32_t code = 0; code < Count; ++code) {
            lower.at(code) = ComputedLower(code);
            upper.at(code) = ComputedUpper(code);
        }
    }

    static const CommonLetters& Get() {
        static const CommonLetters letters;
        return letters;
    }

    std::array<char32_t, Count> lower{}, upper{};
};

char32_t Lower(char32_t code) {
    return code < CommonLetters::Count ? CommonLetters::Get().lower[code] : ComputedLower(code);
}

char32_t Upper(char32_t code) {
    return code < CommonLetters::Count ? CommonLetters::Get().upper[code] : ComputedUpper(code);
}

/// In lower case where it is a character; with a mark where it is none.
char32_t LowerOf(const Utf8Character& character) {
    constexpr char32_t NoCharacter = 0x80000000;
    return character.wellFormed ? Lower(character.code) : character.code | NoCharacter;
}

/// Every character replaced; bytes that are none stay.
template <ascii::Block (*ChangeBlock)(ascii::Block), char (*ChangeAscii)(char),
          char32_t (*Change)(char32_t)>
std::string ChangeEach(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t plain = ascii::PrefixLength(text);
        std::size_t at = result.size();
        result += text.substr(0, plain);
        for (; at + ascii::BlockSize <= result.size(); at += ascii::BlockSize) {
            const ascii::Block changed = ChangeBlock(ascii::BlockAt(result, at));
            std::memcpy(&result[at], &changed, ascii::BlockSize);
        }
        for (; at < result.size(); ++at)
            result[at] = ChangeAscii(result[at]);
        text.remove_prefix(plain);
        if (text.empty()) break;
        const Utf8Character character = DecodeUtf8(text, 0);
        if (character.wellFormed) {
            AppendUtf8(result, Change(character.code));
        } else {
            result += text.substr(0, character.length);
        }
        text.remove_prefix(character.length);
    }
    return result;
}

/// The character at `position` in upper case, behind which the position moves.
char32_t NextUpper(std::string_view text, std::size_t& position) {
    const Utf8Character character = DecodeUtf8(text, position);
    position += character.length;
    return character.wellFormed ? Upper(character.code) : character.code;
}

/// Orders codes as their UTF-16 units: those in surrogate pairs come before U+E000 to U+FFFF.
char32_t UnitOrder(char32_t code) {
    constexpr char32_t FirstBehindSurrogates = 0xE000;
    constexpr char32_t FirstPair = 0x10000;
    constexpr char32_t BeyondAll = 0x110000;
    return code >= FirstBehindSurrogates && code < FirstPair ? code + BeyondAll : code;
}

/// Whether a character may have begun in front of this byte.
bool IsInsideCharacter(std::string_view text, std::size_t at) {
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80;
}

/// How texts compare that are the same up to there, by the last eight bytes that both have; nothing
/// where those are less, or no ASCII.
std::optional<int> OrderOfEnds(std::string_view left, std::string_view right, std::size_t same) {
    const std::size_t both = std::min(left.size(), right.size());
    if (both < ascii::BlockSize || both - same >= ascii::BlockSize) return std::nullopt;
    const ascii::Block l = ascii::BlockAt(left, both - ascii::BlockSize);
    const ascii::Block r = ascii::BlockAt(right, both - ascii::BlockSize);
    if (((l | r) & ascii::HighBits) != 0) return std::nullopt;
    if (const int order = ascii::CompareBlocks(ascii::Upper(l), ascii::Upper(r)); order != 0)
        return order;
    return left.size() == right.size() ? 0 : left.size() < right.size() ? -1 : 1;
}

/// Below, at or above zero as left comes before, with or behind right, whatever their case.
int CompareIgnoringCase(std::string_view left, std::string_view right) {
    // Most characters of most names are the same, or ASCII.
    std::size_t same = 0;
    for (; same + ascii::BlockSize <= std::min(left.size(), right.size());
         same += ascii::BlockSize) {
        const ascii::Block l = ascii::BlockAt(left, same);
        const ascii::Block r = ascii::BlockAt(right, same);
        if (l == r) continue;
        if (((l | r) & ascii::HighBits) != 0) break;
        const int order = ascii::CompareBlocks(ascii::Upper(l), ascii::Upper(r));
        if (order != 0) return order;
    }
    if (const auto order = OrderOfEnds(left, right, same)) return *order;
    while (same > 0 && (IsInsideCharacter(left, same) || IsInsideCharacter(right, same)))
        --same;
    std::size_t l = same;
    std::size_t r = same;
    while (l < left.size() && r < right.size()) {
        if (ascii::IsAscii(left[l]) && ascii::IsAscii(right[r])) {
            const char leftLetter = ascii::Upper(left[l++]), rightLetter = ascii::Upper(right[r++]);
            if (leftLetter != rightLetter) return leftLetter < rightLetter ? -1 : 1;
            continue;
        }
        const char32_t leftCode = NextUpper(left, l);
        const char32_t rightCode = NextUpper(right, r);
        if (leftCode != rightCode) return UnitOrder(leftCode) < UnitOrder(rightCode) ? -1 : 1;
    }
    if (l == left.size() && r == right.size()) return 0;
    return l == left.size() ? -1 : 1;
}

}  // namespace

std::string LowerCase(std::string_view text) {
    return ChangeEach<ascii::Lower, ascii::Lower, Lower>(text);
}

std::string UpperCase(std::string_view text) {
    return ChangeEach<ascii::Upper, ascii::Upper, Upper>(text);
}

bool EqualIgnoringCase(std::string_view left, std::string_view right) {
    return CompareIgnoringCase(left, right) == 0;
}

std::optional<std::size_t> BeginningIn(std::string_view text, std::string_view beginning) {
    std::size_t at = 0;
    for (; at + ascii::BlockSize <= std::min(text.size(), beginning.size());
         at += ascii::BlockSize) {
        const ascii::Block l = ascii::BlockAt(text, at), r = ascii::BlockAt(beginning, at);
        if (((l | r) & ascii::HighBits) != 0) break;
        if (ascii::Lower(l) != ascii::Lower(r)) return std::nullopt;
    }
    for (std::size_t i = at; i < beginning.size();) {
        if (at >= text.size()) return std::nullopt;
        if (ascii::IsAscii(text[at]) && ascii::IsAscii(beginning[i])) {
            if (ascii::Lower(text[at]) != ascii::Lower(beginning[i])) return std::nullopt;
            ++at;
            ++i;
            continue;
        }
        const Utf8Character left = DecodeUtf8(text, at), right = DecodeUtf8(beginning, i);
        if (LowerOf(left) != LowerOf(right)) return std::nullopt;
        at += left.length;
        i += right.length;
    }
    return at;
}

bool WindowsNameLess(std::string_view left, std::string_view right) {
    const int order = CompareIgnoringCase(left, right);
    return order != 0 ? order < 0 : left < right;
}

std::string_view Trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::vector<std::string> Split(std::string_view text, std::string_view separator) {
    std::vector<std::string> pieces;
    if (text.empty()) return pieces;
    std::size_t from = 0;
    while (!separator.empty()) {
        const std::size_t found = text.find(separator, from);
        if (found == std::string_view::npos) break;
        pieces.emplace_back(text.substr(from, found - from));
        from = found + separator.size();
    }
    pieces.emplace_back(text.substr(from));
    return pieces;
}

std::string Replace(std::string_view text, std::string_view from, std::string_view to) {
    if (from.empty()) return std::string(text);
    std::string result;
    result.reserve(text.size());
    std::size_t copied = 0;
    for (std::size_t found = text.find(from); found != std::string_view::npos;
         found = text.find(from, copied)) {
        result += text.substr(copied, found - copied);
        result += to;
        copied = found + from.size();
    }
    result += text.substr(copied);
    return result;
}

std::string_view Right(std::string_view text, std::size_t count) {
    std::size_t start = text.size();
    for (; count > 0 && start > 0; --count) {
        const auto isInside = [&](std::size_t at) {
            return (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80;
        };
        --start;
        while (start > 0 && isInside(start))
            --start;
    }
    return text.substr(start);
}

}  // namespace quillon
