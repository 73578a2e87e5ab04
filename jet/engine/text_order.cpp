#include "jet/engine/text_order.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utf8proc.h>

#include "jet/dialect/token.h"
#include "jet/storage/index/index_key.h"

namespace jet {

namespace {

using dialect::IsSuffixPattern;

unsigned char Byte(char c) {
    return static_cast<unsigned char>(c);
}
bool IsAscii(char c) {
    return Byte(c) < 0x80;
}
bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return IsAscii(c); });
}
char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}
char Upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

std::string MapAscii(std::string_view text, char (*map)(char)) {
    std::string mapped(text);
    std::transform(mapped.begin(), mapped.end(), mapped.begin(), map);
    return mapped;
}

/// Applies `append` to each character beyond ASCII; bytes that are none are copied.
template <typename Append>
std::string MapCharacters(std::string_view text, char (*mapAscii)(char), const Append& append) {
    std::string mapped;
    mapped.reserve(text.size());
    const auto* at = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    const auto* const end = at + text.size();
    while (at < end) {
        if (*at < 0x80) {
            mapped.push_back(mapAscii(static_cast<char>(*at++)));
            continue;
        }
        utf8proc_int32_t character = 0;
        const utf8proc_ssize_t length = utf8proc_iterate(at, end - at, &character);
        if (length > 0) {
            append(mapped, character);
            at += length;
        } else {
            mapped.push_back(static_cast<char>(*at++));
        }
    }
    return mapped;
}

void AppendCharacter(std::string& text, utf8proc_int32_t character) {
    std::array<utf8proc_uint8_t, 4> bytes{};
    const utf8proc_ssize_t length = utf8proc_encode_char(character, bytes.data());
    for (utf8proc_ssize_t i = 0; i < length; ++i)
        text.push_back(static_cast<char>(bytes[static_cast<std::size_t>(i)]));
}

void AppendComputedFold(std::string& text, utf8proc_int32_t character) {
    std::array<utf8proc_int32_t, 8> folded{};
    int lastClass = 0;
    const utf8proc_ssize_t count = utf8proc_decompose_char(
        character, folded.data(), static_cast<utf8proc_ssize_t>(folded.size()), UTF8PROC_CASEFOLD,
        &lastClass);
    if (count < 1 || count > static_cast<utf8proc_ssize_t>(folded.size())) {
        AppendCharacter(text, character);
        return;
    }
    for (utf8proc_ssize_t i = 0; i < count; ++i)
        AppendCharacter(text, folded[static_cast<std::size_t>(i)]);
}

/// The letters that most names are made of, folded: working one out takes many times longer.
struct FoldedLetters {
    static constexpr std::size_t Count = 0x600;  // Latin, Greek, Cyrillic, Armenian, Hebrew

    FoldedLetters() {
        for (std::size_t letter = 0; letter < Count; ++letter)
            AppendComputedFold(texts.at(letter), static_cast<utf8proc_int32_t>(letter));
    }

    std::array<std::string, Count> texts;
};

void AppendFolded(std::string& text, utf8proc_int32_t character) {
    static const FoldedLetters letters;
    const auto letter = static_cast<std::size_t>(character);
    if (letter < FoldedLetters::Count) {
        text += letters.texts[letter];
    } else {
        AppendComputedFold(text, character);
    }
}

/// For each ASCII character its place in the sort order, after folding; 0 for those whose weight is
/// not in the first part of the key (apostrophe, hyphen, control characters).
using Ranks = std::array<std::uint16_t, 128>;

Ranks MakeRanks() {
    Ranks ranks{};
    for (char16_t c = 0x21; c < 0x7F; ++c) {
        Bytes key;
        storage::AppendTextKey(key, std::u16string_view(&c, 1));
        // A key that begins with a part's end (1) has nothing in its first part.
        if (key.size() < 2 || key[0] <= 1) continue;
        ranks[c] = static_cast<std::uint16_t>(key[0] << 8 | (key[1] > 1 ? key[1] : 0));
    }
    ranks[' '] = 1;  // blanks sort before everything, whether they end a text or not
    return ranks;
}

/// Keys leave out what lies behind this many units.
constexpr std::size_t KeyLength = 255;

int Sign(std::size_t left, std::size_t right) {
    return left < right ? -1 : left > right ? 1 : 0;
}

/// By the order of keys; texts with equal keys by their bytes.
int CompareFolded(const std::string& left, const std::string& right) {
    const int order = storage::CompareTexts(left, right);
    return order != 0 ? order : left.compare(right);
}

}  // namespace

std::string FoldCase(std::string_view text) {
    if (IsAscii(text)) return MapAscii(text, Lower);
    return MapCharacters(text, Lower, AppendFolded);
}

int CompareTexts(std::string_view left, std::string_view right) {
    static const Ranks orderOfAscii = MakeRanks();
    const std::size_t common = std::min(left.size(), right.size());
    std::size_t at = 0;
    while (at < common &&
           (left[at] == right[at] || (IsAscii(left[at]) && Lower(left[at]) == Lower(right[at]))))
        ++at;
    // What both texts begin with is the same in both keys; the first difference decides, where it
    // lies in the keys' first part. A text that ends there comes first.
    if (at == common) return Sign(left.size(), right.size());
    if (at < KeyLength && IsAscii(left[at]) && IsAscii(right[at])) {
        const std::uint16_t a = orderOfAscii[Byte(Lower(left[at]))];
        const std::uint16_t b = orderOfAscii[Byte(Lower(right[at]))];
        if (a != 0 && b != 0 && a != b) return a < b ? -1 : 1;
    }
    return CompareFolded(FoldCase(left), FoldCase(right));
}

namespace engine {

std::string ToLower(std::string_view text) {
    if (IsAscii(text)) return MapAscii(text, Lower);
    return MapCharacters(text, Lower, [](std::string& mapped, utf8proc_int32_t character) {
        AppendCharacter(mapped, utf8proc_tolower(character));
    });
}

std::string ToUpper(std::string_view text) {
    if (IsAscii(text)) return MapAscii(text, Upper);
    return MapCharacters(text, Upper, [](std::string& mapped, utf8proc_int32_t character) {
        AppendCharacter(mapped, utf8proc_toupper(character));
    });
}

std::string SuffixKey(std::string_view text) {
    std::string key = FoldCase(text);
    std::reverse(key.begin(), key.end());
    return key;
}

bool MatchesPattern(std::string_view text, std::string_view pattern) {
    const std::string value = FoldCase(text);
    const std::string folded = FoldCase(pattern);
    if (IsSuffixPattern(folded)) return value.ends_with(std::string_view(folded).substr(1));
    std::string_view rest = value, parts = folded;
    bool anchored = true;
    while (true) {
        const std::size_t percent = parts.find('%');
        const std::string_view part = parts.substr(0, percent);
        if (percent == std::string_view::npos) {
            return anchored ? rest == part : rest.ends_with(part);
        }
        const std::size_t found =
            anchored ? (rest.starts_with(part) ? 0 : std::string_view::npos) : rest.find(part);
        if (found == std::string_view::npos) return false;
        rest.remove_prefix(found + part.size());
        parts.remove_prefix(percent + 1);
        anchored = false;
    }
}

}  // namespace engine

}  // namespace jet
