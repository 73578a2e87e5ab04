#include "picker/modern/search_data.h"

#include <cstdint>

#include "picker/html.h"
#include "picker/modern/frame.h"
#include "picker/modern/letters.h"
#include "platform/content_hash.h"

namespace quillon {
namespace {

/// "[title,thumbnail]" or "[title,initials,tone]".
std::string AlbumEntry(const PickerAlbum& album, const AlbumExtras& extras) {
    std::string entry = '[' + ScriptText(album.title) + ',';
    if (extras.thumbnail.empty()) {
        entry += ScriptText(InitialsOf(album.title)) + ',' + std::to_string(ToneOf(album.artist));
    } else {
        entry += ScriptText(extras.thumbnail);
    }
    return entry + ']';
}

}  // namespace

std::string AlbumsData(const Catalogue& catalogue) {
    std::string text = "quillonPicker.albums([";
    for (std::size_t i = 0; i < catalogue.Count(); ++i) {
        const PickerAlbum& album = catalogue.all.albums[i];
        const bool isNew = i == 0 || catalogue.all.albums[i - 1].artist != album.artist;
        if (isNew) {
            if (i != 0) text += "]],\n";
            text += '[' + ScriptText(album.artist) + ",[";
        } else {
            text += ',';
        }
        text += AlbumEntry(album, catalogue.extras[i]);
    }
    if (catalogue.Count() != 0) text += "]]";
    return text + "]);\n";
}

std::string TracksData(const Catalogue& catalogue) {
    std::string text = "quillonPicker.tracks([";
    for (std::size_t i = 0; i < catalogue.Count(); ++i) {
        if (i != 0) text += ",\n";
        text += '[';
        const std::vector<PickerTrack>& tracks = catalogue.all.albums[i].tracks;
        for (std::size_t track = 0; track < tracks.size(); ++track) {
            if (track != 0) text += ',';
            text += ScriptText(tracks[track].title);
        }
        text += ']';
    }
    return text + "]);\n";
}

std::string VersionedName(std::string_view name, std::string_view content) {
    return std::string(name) + "?v=" + std::to_string(ContentHash(content) % 0x100000000U);
}

}  // namespace quillon
