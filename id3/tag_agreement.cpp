#include "id3/tag_agreement.h"

#include <algorithm>
#include <string>
#include <vector>

#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/utf8.h"
#include "run/name_cleaning.h"

namespace quillon {
namespace {

bool ShareTheirBeginning(std::string_view left, std::string_view right) {
    return BeginningIn(left, right) || BeginningIn(right, left);
}

/// Without what no name can hold, as people would write it. Much of what NoNasties removes can
/// stand in a name.
std::string AsName(std::string_view value) {
    constexpr std::string_view Refused = "?<>:*\"|";
    std::string name(value);
    std::erase_if(name, [&](char c) { return Refused.find(c) != std::string_view::npos; });
    std::replace_if(name.begin(), name.end(), [](char c) { return c == '/' || c == '\\'; }, '-');
    return name;
}

/// Whether the value fits as it is or as a name may have it.
template <typename Fits>
bool FitsAsName(std::string_view value, const Fits& fits) {
    if (fits(value)) return true;
    for (const std::string& name : {NoNasties(value), AsName(value)}) {
        const std::string_view trimmed = Trim(name);
        if (!trimmed.empty() && trimmed != value && fits(trimmed)) return true;
    }
    return false;
}

/// What is left behind the number at the beginning ("01. ", "2-03 "); the text itself without one.
std::string_view WithoutNumber(std::string_view text) {
    constexpr std::string_view Digits = "0123456789", Separators = " .-_)";
    const std::size_t number = std::min(text.find_first_not_of(Digits), text.size());
    const std::size_t rest = std::min(text.find_first_not_of(Separators, number), text.size());
    if (number == 0 || rest == number || rest == text.size()) return text;
    return WithoutNumber(text.substr(rest));
}

/// What may be the song's title in a longer one, in lower case.
std::vector<std::string> InnerTitles(std::string_view title) {
    constexpr std::string_view Dash = " - ";
    const std::string lower = LowerCase(title);
    std::vector<std::string> titles;
    std::string_view rest = lower;
    while (true) {
        const std::string_view bare = WithoutNumber(rest);
        if (bare.size() < lower.size()) titles.emplace_back(bare);
        const std::size_t dash = rest.find(Dash);
        if (dash == std::string_view::npos) return titles;
        rest.remove_prefix(dash + Dash.size());
        titles.emplace_back(rest);
    }
}

}  // namespace

bool TagAgrees(std::string_view value, std::string_view expected) {
    if (ShareTheirBeginning(value, expected)) return true;
    // Texts of ASCII are the same in the code page.
    return (!IsAscii(expected) && ShareTheirBeginning(value, AnsiToUtf8(Utf8ToAnsi(expected)))) ||
           (!IsAscii(value) && ShareTheirBeginning(AnsiToUtf8(value), expected));
}

bool TagAgreesWithName(std::string_view value, std::string_view name) {
    return FitsAsName(value, [name](std::string_view text) { return TagAgrees(text, name); });
}

bool TagAgreesWithTitle(std::string_view value, std::string_view title) {
    if (TagAgreesWithName(value, title)) return true;
    const std::vector<std::string> inner = InnerTitles(title);
    const auto isOne = [&inner](std::string_view text) {
        return std::find(inner.begin(), inner.end(), LowerCase(text)) != inner.end();
    };
    const auto beginsOne = [&inner](std::string_view text) {
        const std::string beginning = LowerCase(text);
        return std::any_of(inner.begin(), inner.end(),
                           [&](const std::string& whole) { return whole.starts_with(beginning); });
    };
    return FitsAsName(value, beginsOne) && !FitsAsName(value, isOne);
}

bool IsNameOf(std::string_view value, std::string_view name) {
    return FitsAsName(value,
                      [name](std::string_view text) { return EqualIgnoringCase(text, name); });
}

std::vector<std::string> CutTexts(std::string_view text) {
    constexpr std::size_t Room = 30;
    std::vector<std::string> cuts;
    std::size_t characters = 0;
    for (std::size_t at = 0; at < text.size() && characters <= Room; ++characters) {
        const std::size_t next = at + DecodeUtf8(text, at).length;
        // In the code page a character is a byte.
        const bool isEnd = characters + 1 >= Room || (at <= Room && next >= Room);
        if (isEnd) cuts.emplace_back(Trim(text.substr(0, at)));
        at = next;
    }
    return cuts;
}

bool IsCutOf(std::string_view name, std::string_view value) {
    const std::vector<std::string> cuts = CutTexts(Trim(value));
    return std::ranges::any_of(cuts,
                               [name](const std::string& cut) { return IsNameOf(cut, name); });
}

bool HoldsMoreThanNames(std::string_view value) {
    return NoNasties(value) != value || AsName(value) != value;
}

}  // namespace quillon
