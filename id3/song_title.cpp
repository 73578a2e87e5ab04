#include "id3/song_title.h"

#include <algorithm>
#include <vector>

#include "platform/basic_text.h"
#include "platform/utf8.h"

namespace quillon {
namespace {

/// The characters of a text, for comparisons without letter case.
struct Characters {
    explicit Characters(std::string_view text) {
        for (std::size_t at = 0; at < text.size();) {
            const Utf8Character character = DecodeUtf8(text, at);
            const std::string_view bytes = text.substr(at, character.length);
            lower.push_back(LowerCase(bytes));
            size.push_back(bytes.size());
            at += bytes.size();
        }
    }

    std::vector<std::string> lower;
    std::vector<std::size_t> size;  ///< bytes in the text
};

std::string Without(std::string_view text, std::string_view part) {
    // Most names hold neither.
    if (LowerCase(text).find(LowerCase(part)) == std::string::npos) return std::string(text);
    const Characters all(text), removed(part);
    std::string rest;
    for (std::size_t i = 0, at = 0; i < all.size.size();) {
        const bool isThere = all.size.size() - i >= removed.size.size() &&
                             std::equal(removed.lower.begin(), removed.lower.end(),
                                        all.lower.begin() + static_cast<std::ptrdiff_t>(i));
        const std::size_t count = isThere ? removed.size.size() : 1;
        const std::size_t before = at;
        for (std::size_t k = 0; k < count; ++k)
            at += all.size[i++];
        if (!isThere) rest += text.substr(before, at - before);
    }
    return rest;
}

}  // namespace

std::string SongTitle(std::string_view fileName, std::string_view artist) {
    return Without(Without(fileName, ".mp3"), std::string(artist).append(" - "));
}

std::string RoundBrackets(std::string_view text) {
    return Replace(Replace(text, "[", "("), "]", ")");
}

}  // namespace quillon
