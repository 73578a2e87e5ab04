#include "picker/modern/frame.h"

#include "picker/html.h"
#include "picker/locations.h"
#include "picker/modern/assets.h"
#include "picker/modern/letters.h"
#include "picker/modern/search_data.h"
#include "picker/modern/thumbnails.h"
#include "picker/page_text.h"
#include "picker/pages.h"
#include "platform/content_hash.h"

namespace quillon {
namespace {

constexpr std::size_t Tones = 6;

std::string Attribute(std::string_view name, std::string_view value) {
    return ' ' + std::string(name) + "='" + HtmlText(value) + '\'';
}

}  // namespace

std::size_t ToneOf(std::string_view artist) {
    return static_cast<std::size_t>(ContentHash(artist) >> 32U) % Tones;
}

PageFrame::PageFrame(const std::vector<PickerView>& views, const PlayerButtons& buttons,
                     const PickerLayout& layout, std::string_view coverPath, const Data& data)
    : views_(views),
      buttons_(buttons),
      thumbnailUrl_(UrlPath(coverPath) + std::string(ThumbnailFolderName) + '/') {
    const std::string style = VersionedName(StylesheetName, PickerAsset(StylesheetName));
    const std::string script = VersionedName(ScriptName, PickerAsset(ScriptName));
    head_ = Line("<link rel='stylesheet'" + Attribute("href", style) + ">");
    main_ = Line("<main class='picker' style='--wide:" + std::to_string(layout.Wide()) + "'>");
    script_ = Line(
        "<script defer" + Attribute("src", script) + Attribute("data-albums", data.albumsUrl) +
        Attribute("data-tracks", data.tracksUrl) + Attribute("data-thumbnails", thumbnailUrl_) +
        Attribute("data-pages", UrlPath(PageUrlBase)) +
        Attribute("data-per-page", std::to_string(layout.PerPage())) + "></script>");
}

std::string PageFrame::ViewLinks(const PickerView* current) const {
    std::string links;
    for (const PickerView& view : views_) {
        links += "<a href='" + view.FileName(0) + '\'';
        if (&view == current) links += " aria-current='page'";
        links += '>' + view.caption + "</a>";
    }
    return links;
}

std::string PageFrame::Begin(std::string_view title, const PickerView* current) const {
    std::string page = PageHead(title) + head_;
    page += main_;
    page += Line("<div class='picker-top'>");
    page += Line("<nav class='picker-views' aria-label='Albums'>" + ViewLinks(current) + "</nav>");
    // Without a script nothing could be found, so the script shows it.
    page += Line(
        "<form class='picker-search' role='search' hidden>"
        "<input type='search' placeholder='Artist, album or track' "
        "aria-label='Search for artist, album or track' autocomplete='off' spellcheck='false'>"
        "</form>");
    page += Line("<div class='picker-player'><a class='picker-button' href='" +
                 std::string(PlayerPage) + "'>Now playing</a><details><summary>Playlist</summary>" +
                 "<div class='picker-playlist'>" + buttons_.SavePlaylist() +
                 buttons_.ClearPlaylist() + "</div></details></div>");
    page += Line("</div>");
    page += Line(
        "<section class='picker-found' aria-label='Search results' hidden>"
        "<p role='status'></p></section>");
    return page + Line("<div class='picker-content'>");
}

std::string PageFrame::End() const {
    return Line("</div>") + Line("</main>") + script_ + PageFoot();
}

std::string PageFrame::Cover(const PickerAlbum& album, const AlbumExtras& extras, bool lazy) const {
    if (extras.thumbnail.empty()) {
        return "<span class='picker-cover tone" + std::to_string(ToneOf(album.artist)) +
               "' aria-hidden='true'><span>" + HtmlText(InitialsOf(album.title)) + "</span></span>";
    }
    const std::string side = std::to_string(ThumbnailSide);
    return "<img class='picker-cover' src='" + thumbnailUrl_ + extras.thumbnail + "' alt=''" +
           (lazy ? " loading='lazy'" : "") + " width='" + side + "' height='" + side + "'>";
}

}  // namespace quillon
