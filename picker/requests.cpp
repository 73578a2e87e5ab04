#include "picker/requests.h"

#include "picker/html.h"
#include "picker/locations.h"

namespace quillon {

std::string RequestUrl(std::string_view action, const PickerAlbum& album, std::int64_t track) {
    return std::string(PlayerPage) + "?Frame=Picker&ClientAction=" + std::string(action) +
           "&CDJID=" + UrlValue(album.cdjid) + "&ref=" + std::to_string(track);
}

std::string ClearUrl() {
    return std::string(PlayerPage) + "?Frame=Picker&ClientAction=clear";
}

std::string PlayerFormStart() {
    return "<form action='" + std::string(PlayerPage) + "' method='get'>";
}

std::string HiddenValue(std::string_view name, std::string_view value) {
    return "<input type='hidden' name='" + std::string(name) + "' value='" + HtmlText(value) + "'>";
}

}  // namespace quillon
