#include "picker/links.h"

#include <string_view>

#include "picker/html.h"
#include "picker/locations.h"
#include "picker/page_text.h"
#include "picker/requests.h"

namespace quillon {
namespace {

/// The beginning of a link that asks the player for something, up to and without its ">".
std::string Request(std::string_view action, const PickerAlbum& album, std::int64_t track) {
    return "<A HREF=" + RequestUrl(action, album, track);
}

std::string PageLink(std::size_t page) {
    return "<a href=" + PageFileName(page);
}

}  // namespace

std::string PickerLinks::Album(const PickerAlbum& album) const {
    return Request("add", album, 0) + ">Add</a> | " + Request("next", album, 0) +
           ">Play Next</a> | " + Request("play", album, 0) + ">Play</a>";
}

std::string PickerLinks::Track(const PickerAlbum& album, const PickerTrack& track) const {
    if (track.number == 0) return "";
    return Request("add", album, track.number) + " aria-label='Add " + HtmlText(track.title) +
           "'>Add</a>";
}

std::string PickerLinks::SavePlaylist() const {
    return "<form name='savePlaylist' action=" + std::string(PlayerPage) +
           " method='get'><label>Playlist Name: "
           "<input type='text' name='filename' value = '' size='30'></label> "
           "<input type='hidden' name='ClientAction' value = 'save'>"
           "<input type='hidden' name='Frame' value='picker'>"
           R"html(<a href="javascript:document.savePlaylist.submit()">)html"
           "Save Playlist | </a></form>";
}

std::string PickerLinks::Navigation(std::size_t page, std::size_t pageCount) const {
    std::string links;
    if (page != 0) {
        // Back to the place in the index where this page's albums are.
        links += PageLink(0) + "#" + PagePlace(page) + ">Back to Album Listing</a> | ";
    }
    links += "<a href=" + ClearUrl() + ">Clear Current Playlist</a> | ";
    if (pageCount > 0) links += PageLink(1) + ">First</a> | ";
    links += PageLink(0) + (page == 0 ? " aria-current='page'" : "") + ">Index</a>";
    if (pageCount == 0) return links;
    links += " | ";
    if (page > 1) links += PageLink(page - 1) + ">Previous</a> | ";
    if (page != 0 && page < pageCount) links += PageLink(page + 1) + ">Next</a> | ";
    links += PageLink(pageCount) + ">Last</a> | ";
    return links + NumberedPages(page, pageCount);
}

}  // namespace quillon
