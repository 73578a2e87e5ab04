#include "picker/page_text.h"

#include "picker/html.h"
#include "picker/locations.h"

namespace quillon {

std::string Line(std::string_view text) {
    return std::string(text) + std::string(Eol);
}

std::string Isolated(std::string_view text) {
    return "<bdi>" + HtmlText(text) + "</bdi>";
}

std::string CountText(std::int64_t count, std::string_view word) {
    return std::to_string(count) + ' ' + std::string(word) + (count == 1 ? "" : "s");
}

std::string AlbumPlace(std::size_t album) {
    return "album" + std::to_string(album + 1);
}

std::string AlbumUrl(std::size_t page, std::size_t album) {
    return UrlPath(PageUrlBase) + PageFileName(page) + '#' + AlbumPlace(album);
}

std::string PagePlace(std::size_t page) {
    return "page" + std::to_string(page);
}

std::string ShownText(std::size_t shown, std::int64_t all, int leastTracks) {
    const std::string inLibrary = CountText(all, "album") + " in the library";
    if (shown == 0) {
        return "No albums to pick from: " + inLibrary + ", none with at least " +
               CountText(leastTracks, "track") + ".";
    }
    if (static_cast<std::int64_t>(shown) == all) return CountText(all, "album") + ", by artist.";
    return std::to_string(shown) + " of " + inLibrary + ", by artist: those with at least " +
           CountText(leastTracks, "track") + ".";
}

}  // namespace quillon
