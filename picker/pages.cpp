#include "picker/pages.h"

#include <algorithm>

#include "picker/html.h"
#include "picker/locations.h"
#include "picker/page_text.h"

namespace quillon {
PickerPages::PickerPages(const PickerLayout& layout, const PickerControls& controls,
                         const PickerAlbums& albums, std::string_view coverPath)
    : layout_(layout), controls_(controls), albums_(albums), coverUrl_(UrlPath(coverPath)) {}

std::string PickerPages::Index(int leastTracks) const {
    const std::size_t count = albums_.albums.size();
    std::string page = Begin("Album Picker Index Page", "Album Picker");
    page += Line("<p>" + ShownText(count, albums_.inLibrary, leastTracks) + "</p>");
    if (count > 0) {
        page += BeginGrid("picker-index");
        for (std::size_t album = 0; album < count; ++album) {
            page += RowBreak(album);
            page += Line(Thumbnail(album));
        }
        page += Line("</tr></table>");
    }
    return page + End(0);
}

std::span<const PickerAlbum> PickerPages::AlbumsOn(std::size_t page) const {
    const std::size_t first = (page - 1) * layout_.PerPage();
    const std::size_t count = std::min(layout_.PerPage(), albums_.albums.size() - first);
    return std::span(albums_.albums).subspan(first, count);
}

std::string PickerPages::BeginPage(std::size_t page) const {
    const std::string number = std::to_string(page);
    return Begin("Album Picker Page " + number,
                 "Album Picker, page " + number + " of " + std::to_string(PageCount())) +
           BeginGrid("picker-albums");
}

std::string PickerPages::AlbumCell(std::size_t number) const {
    const PickerAlbum& album = albums_.albums[number];
    std::string cell(RowBreak(number % layout_.PerPage()));
    cell += Line("<td valign='top' id='" + AlbumPlace(number) +
                 "'><table role='presentation' class='picker-album'><tr><td>");
    cell += Line("<img src=" + CoverUrl(album) + " alt='Cover of " + HtmlText(album.title) +
                 "' width=200 height=200></td><td>");
    cell += Line("<ul>");
    cell += Line("<li>Album:<h2 dir='auto'>" + HtmlText(album.title) + "</h2></li>");
    cell += Line("<li>Artist:" + Isolated(album.artist) + "</li>");
    cell += Line("<li>Tracks: " + std::to_string(album.trackCount) + "</li>");
    cell += Line("<li>Time: " + LengthText(album.length) + "</li>");
    cell += Line("</ul>");
    cell += Line(controls_.Album(album));
    cell += Line("</td></tr></table>");
    cell += TrackTable(album);
    return cell + Line("</td>");
}

std::string PickerPages::EndPage(std::size_t page) const {
    return Line("</tr></table>") + End(page);
}

std::string PickerPages::Begin(std::string_view title, std::string_view heading) const {
    std::string text = PageHead(title);
    text += Line("<link rel='stylesheet' href='" + std::string(StylesheetName) + "'>");
    text += Line("<div class='picker'>");
    text += Line("<div class='picker-bar'>");
    text += Line("<table cellspacing='0' cellpadding='0'><tr><td width='300'><h1>" +
                 std::string(heading) + "</h1></td><td><center>");
    text += Line(controls_.SavePlaylist() + " <a href='" + std::string(PlayerPage) +
                 "'>NowPlaying</a>");
    text += Line("</center></td></tr></table>");
    return text + Line("</div>");
}

std::string PickerPages::End(std::size_t page) const {
    return Line("<nav aria-label='Pages'><br><center>") +
           Line(controls_.Navigation(page, PageCount())) + Line("</center></nav>") + "</div>" +
           PageFoot();
}

std::string PickerPages::BeginGrid(std::string_view style) const {
    return Line("<table role='presentation' class='" + std::string(style) +
                "' style='--wide:" + std::to_string(layout_.Wide()) + "'><tr>");
}

std::string_view PickerPages::RowBreak(std::size_t cell) const {
    return cell != 0 && cell % layout_.Wide() == 0 ? "</tr><tr>\r\n" : "";
}

std::string PickerPages::Thumbnail(std::size_t number) const {
    const PickerAlbum& album = albums_.albums[number];
    const std::size_t page = layout_.PageOf(number);
    std::string cell = "<td valign='top'><a href=" + AlbumUrl(page, number);
    // The first album of each page is where that page's way back leads.
    if (number % layout_.PerPage() == 0) cell += " id='" + PagePlace(page) + '\'';
    cell += "><img src=" + CoverUrl(album) + " alt='" + HtmlText(album.title) + " by " +
            HtmlText(album.artist) + "' loading='lazy' width=100 height=100></a><br>";
    return cell + Isolated(album.artist) + "<br>" + Isolated(album.title) + "</td>";
}

std::string PickerPages::TrackTable(const PickerAlbum& album) const {
    std::string table = Line(
        "<table class='picker-tracks'><tr><td>"
        "<center><b>Track Name</b></center></td>"
        "<td width='54'><b>Time</b></td>"
        "<td><b><center>Add To Playlist</b></center></td></tr>");
    for (const PickerTrack& track : album.tracks) {
        table += Line("<tr><td>" + Isolated(track.title) + "</td><td width='54'> " +
                      LengthText(track.length) + "</td><td>" + controls_.Track(album, track) +
                      "</td></tr>");
    }
    return table + Line("</table>");
}

std::string PickerPages::CoverUrl(const PickerAlbum& album) const {
    return coverUrl_ + UrlPath(album.coverFile);
}

}  // namespace quillon
