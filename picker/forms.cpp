#include "picker/forms.h"

#include <string_view>

#include "picker/html.h"
#include "picker/locations.h"
#include "picker/page_text.h"
#include "picker/requests.h"

namespace quillon {
namespace {

std::string Submit(std::string_view action) {
    return "<input type='submit' name='ClientAction' value = '" + std::string(action) + "'>";
}

/// What a request is about, and the form's end.
std::string Subject(const PickerAlbum& album, std::int64_t track) {
    return HiddenValue("CDJID", album.cdjid) + HiddenValue("ref", std::to_string(track)) +
           HiddenValue("Frame", FormFrame) + "</form>";
}

std::string PageForm(std::size_t page, std::string_view place, std::string_view caption) {
    return "<form action='" + PageFileName(page) + std::string(place) +
           "' method='get'><input type='submit' value='" + std::string(caption) + "'></form>";
}

}  // namespace

std::string PickerForms::Album(const PickerAlbum& album) const {
    return PlayerFormStart() + Submit("add") + Submit("next") + Submit("play") + Subject(album, 0);
}

std::string PickerForms::Track(const PickerAlbum& album, const PickerTrack& track) const {
    if (track.number == 0) return "";
    return PlayerFormStart() +
           "<input type='hidden' name='ClientAction' value = 'add'>"
           "<input type='submit' name='add' value = 'Add' aria-label='Add " +
           HtmlText(track.title) + "'>" + Subject(album, track.number);
}

std::string PickerForms::SavePlaylist() const {
    return "<form name='savePlaylist' action=" + std::string(PlayerPage) +
           " method='get'><label>Playlist Name: "
           "<input type='text' name='filename' value = '' size='30'></label> "
           "<input type='submit' name='save' value = 'Save Playlist'>"
           "<input type='hidden' name='ClientAction' value = 'save'>"
           "<input type='hidden' name='Frame' value='picker'></form>";
}

std::string PickerForms::Navigation(std::size_t page, std::size_t pageCount) const {
    std::string forms = PlayerFormStart() +
                        "<input type='submit' name='clear' value = 'Clear Playlist'>"
                        "<input type='hidden' name='ClientAction' value = 'clear'>"
                        "<input type='hidden' name='Frame' value='picker'></form>";
    if (page != 0) {
        // Back to the place in the index where this page's albums are.
        forms = PageForm(0, '#' + PagePlace(page), "Album Listing") + forms;
    }
    if (pageCount > 0) forms += PageForm(1, "", "First");
    forms += PageForm(0, "", "Index");
    if (pageCount == 0) return forms;
    if (page > 1) forms += PageForm(page - 1, "", "Previous");
    if (page != 0 && page < pageCount) forms += PageForm(page + 1, "", "Next");
    forms += PageForm(pageCount, "", "Last");
    return forms + "<br>" + NumberedPages(page, pageCount);
}

}  // namespace quillon
