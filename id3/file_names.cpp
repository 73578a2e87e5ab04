#include "id3/file_names.h"

#include <algorithm>

#include "platform/basic_text.h"
#include "platform/utf8.h"

namespace quillon {
namespace {

/// In which letters of ASCII differ from those of the other case.
constexpr unsigned CaseBit = 0x20;

/// The text without every occurrence of the part, which is not empty, letter case aside.
std::string Without(std::string_view text, std::string_view part) {
    std::string rest;
    std::size_t kept = 0;
    const auto first = static_cast<unsigned char>(part.front());
    for (std::size_t at = 0; at < text.size();) {
        // Comparing one letter rules out most places.
        const auto here = static_cast<unsigned char>(text[at]);
        if (here < 0x80 && first < 0x80 && (here | CaseBit) != (first | CaseBit)) {
            ++at;
            continue;
        }
        if (const auto found = BeginningIn(text.substr(at), part)) {
            rest += text.substr(kept, at - kept);
            at += *found;
            kept = at;
        } else {
            at += DecodeUtf8(text, at).length;
        }
    }
    rest += text.substr(kept);
    return rest;
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
    return Without(Without(fileName, ".mp3"), std::string(artist).append(" - "));
}

std::string RoundBrackets(std::string_view text) {
    std::string round(text);
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
