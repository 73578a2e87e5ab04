#include "id3/file_names.h"

#include <algorithm>
#include <bit>

#include "platform/ascii.h"
#include "platform/basic_text.h"
#include "platform/utf8.h"

namespace quillon {
namespace {

/// Where from a place on the character may begin, in either case, by which a part begins; the
/// text's size where it does not.
std::size_t NextBeginning(std::string_view text, std::size_t at, char first) {
    // Only letters of ASCII are letters of ASCII in the other case.
    if (!ascii::IsAscii(first)) return at;
    constexpr unsigned char CaseBit = 0x20;
    const ascii::Block wanted = ascii::Repeated(static_cast<unsigned char>(first) | CaseBit);
    while (at < text.size()) {
        std::string_view rest = text.substr(at);
        const ascii::Block block = ascii::TakeBlock(rest);
        const ascii::Block differing = (block | ascii::Repeated(CaseBit)) ^ wanted;
        const ascii::Block found = (differing - ascii::Repeated(1)) & ~differing & ascii::HighBits;
        if (found != 0)
            return std::min(at + static_cast<std::size_t>(std::countr_zero(found)) / 8,
                            text.size());
        at += ascii::BlockSize;
    }
    return text.size();
}

/// Takes every occurrence of the part, which is not empty, out of the text, letter case aside.
void TakeOut(std::string& text, std::string_view part) {
    for (std::size_t at = NextBeginning(text, 0, part.front()); at < text.size();
         at = NextBeginning(text, at, part.front())) {
        if (const auto found = BeginningIn(std::string_view(text).substr(at), part)) {
            text.erase(at, *found);
        } else {
            at += DecodeUtf8(text, at).length;
        }
    }
}

constexpr std::string_view Renaming = ".quillon-renaming", Vanished = ".quillon-vanished";
constexpr std::string_view Ending = ".mp3";

/// All these names end so, in some letter case.
std::string Marked(std::string_view path, std::string_view mark) {
    const std::string_view stem = path.substr(0, path.size() - Ending.size());
    return std::string(stem).append(mark).append(path.substr(stem.size()));
}

}  // namespace

std::string SongTitle(std::string_view fileName, std::string_view artist) {
    std::string title(fileName);
    TakeOut(title, ".mp3");
    TakeOut(title, std::string(artist).append(" - "));
    return title;
}

std::string RoundBrackets(std::string_view text) {
    std::string round(text);
    if (text.find('[') == std::string_view::npos && text.find(']') == std::string_view::npos)
        return round;
    std::replace(round.begin(), round.end(), '[', '(');
    std::replace(round.begin(), round.end(), ']', ')');
    return round;
}

std::string TemporaryPath(std::string_view path) {
    return Marked(path, Renaming);
}

std::optional<std::string> NameBeforeRenaming(std::string_view name) {
    if (name.size() <= Ending.size()) return std::nullopt;
    const std::string_view stem = name.substr(0, name.size() - Ending.size());
    if (!stem.ends_with(Renaming) || stem.size() == Renaming.size()) return std::nullopt;
    return std::string(stem.substr(0, stem.size() - Renaming.size()))
        .append(name.substr(stem.size()));
}

std::string PathOfVanished(std::string_view path) {
    return Marked(path, Vanished);
}

}  // namespace quillon
