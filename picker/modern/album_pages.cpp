#include "picker/modern/album_pages.h"

#include <algorithm>
#include <string_view>

#include "picker/controls.h"
#include "picker/html.h"
#include "picker/locations.h"
#include "picker/page_text.h"

namespace quillon {
namespace {

std::string PageButton(const std::string& address, std::string_view caption) {
    return "<a class='picker-button' href='" + address + "'>" + std::string(caption) + "</a>";
}

/// "12 tracks, 47:11".
std::string Measures(const PickerAlbum& album) {
    std::string text = CountText(album.trackCount, "track");
    if (album.length) text += ", " + LengthText(album.length);
    return text;
}

}  // namespace

AlbumPages::AlbumPages(const PageFrame& frame, const PlayerButtons& buttons,
                       const Catalogue& catalogue, const PickerLayout& layout,
                       const PickerView& index)
    : frame_(frame), buttons_(buttons), catalogue_(catalogue), layout_(layout) {
    for (std::size_t page = 0; page < index.pages.size(); ++page) {
        for (const Piece& piece : index.pages[page]) {
            for (std::size_t i = piece.first; i < piece.first + piece.count; ++i)
                indexPageOf_[index.sections[piece.section].albums[i]] = index.FileName(page);
        }
    }
}

std::string AlbumPages::Page(std::size_t page, const OnAlbum& onAlbum) const {
    const std::size_t first = (page - 1) * layout_.PerPage();
    const std::size_t end = std::min(first + layout_.PerPage(), catalogue_.Count());
    const std::string number = std::to_string(page);
    std::string text = frame_.Begin("Album Picker Page " + number, nullptr);
    text += Line("<h1>Albums <span class='picker-more'>page " + number + " of " +
                 std::to_string(Count()) + "</span></h1>");
    text += Line("<div class='picker-albums'>");
    for (std::size_t album = first; album < end; ++album) {
        if (!onAlbum(catalogue_.all.albums[album])) return text;
        text += Album(album);
    }
    return text + Line("</div>") + Navigation(page) + frame_.End();
}

std::string AlbumPages::Album(std::size_t number) const {
    const PickerAlbum& album = catalogue_.all.albums[number];
    const AlbumExtras& extras = catalogue_.extras[number];
    const std::string place = AlbumPlace(number);
    std::string text = Line("<article id='" + place + "' aria-labelledby='" + place + "-title'>");
    text += Line("<header><p>" + Isolated(album.artist) + "</p><h2 id='" + place + "-title'>" +
                 Isolated(album.title) + "</h2></header>");
    text += Line("<div class='picker-about'>" + frame_.Cover(album, extras, true) + "<div><p>" +
                 Measures(album) + "</p>");
    if (!extras.genre.empty()) text += Line("<p>" + Isolated(extras.genre) + "</p>");
    text +=
        Line("<div class='picker-actions'>" + buttons_.Album(album, number) + "</div></div></div>");
    return text + Tracks(number) + Line("</article>");
}

std::string AlbumPages::Tracks(std::size_t number) const {
    const PickerAlbum& album = catalogue_.all.albums[number];
    // A column without anything in it says nothing.
    const bool hasTimes = std::ranges::any_of(
        album.tracks, [](const PickerTrack& track) { return track.length.has_value(); });
    std::string table = Line("<table class='picker-tracks'><thead><tr><th scope='col'>Track</th>" +
                             std::string(hasTimes ? "<th scope='col'>Time</th>" : "") +
                             "<th scope='col'>Add to playlist</th></tr></thead><tbody>");
    for (const PickerTrack& track : album.tracks) {
        const std::string artist = track.artist.empty() ? ""
                                                        : " <span class='picker-more'>" +
                                                              Isolated(track.artist) + "</span>";
        table += "<tr><th scope='row'>" + Isolated(track.title) + artist + "</th>";
        if (hasTimes) table += "<td>" + (track.length ? LengthText(track.length) : "") + "</td>";
        table += Line("<td>" + buttons_.Track(album, number, track) + "</td></tr>");
    }
    return table + Line("</tbody></table>");
}

std::string AlbumPages::Navigation(std::size_t page) const {
    const std::string back = indexPageOf_.at((page - 1) * layout_.PerPage());
    std::string links = PageButton(back + '#' + PagePlace(page), "Back to Album Listing");
    if (page > 1) links += PageButton(PageFileName(1), "First");
    if (page > 1) links += PageButton(PageFileName(page - 1), "Previous");
    if (page < Count()) links += PageButton(PageFileName(page + 1), "Next");
    if (page < Count()) links += PageButton(PageFileName(Count()), "Last");
    return Line("<nav class='picker-steps' aria-label='Pages'>" + links + "</nav>");
}

}  // namespace quillon
