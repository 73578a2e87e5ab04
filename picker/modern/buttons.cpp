#include "picker/modern/buttons.h"

#include <array>
#include <string_view>

#include "picker/html.h"
#include "picker/locations.h"
#include "picker/requests.h"

namespace quillon {
namespace {

struct AlbumAction {
    std::string_view action, caption;
    std::string_view style;
    /// Stands between the caption and the album's title in what is read aloud.
    std::string_view link;
};

constexpr std::array<AlbumAction, 3> AlbumActions{{{"play", "Play", "picker-button main", " "},
                                                   {"next", "Play next", "picker-button", ": "},
                                                   {"add", "Add", "picker-button", " "}}};
constexpr std::string_view ClearCaption = "Clear playlist", SaveCaption = "Save playlist";

std::string Class(std::string_view style) {
    return " class='" + std::string(style) + '\'';
}

/// What a button is called where its caption alone would not tell it from others.
std::string Label(std::string_view caption, std::string_view link, std::string_view what) {
    return " aria-label='" + std::string(caption) + std::string(link) + HtmlText(what) + '\'';
}

std::string LabelOf(const AlbumAction& action, const PickerAlbum& album) {
    return Label(action.caption, action.link, album.title);
}

/// A form for the playlist's name; `button` has what tells the two kinds apart.
std::string SaveForm(std::string_view button) {
    return "<form name='savePlaylist' action='" + std::string(PlayerPage) +
           "' method='get'><label for='picker-name'>Playlist Name:</label> "
           "<input type='text' id='picker-name' name='filename' value='' size='30'> "
           "<button type='submit' class='picker-button main'" +
           std::string(button) + '>' + std::string(SaveCaption) + "</button>" +
           HiddenValue("ClientAction", "save") + HiddenValue("Frame", FormFrame) + "</form>";
}

class LinkButtons : public PlayerButtons {
  public:
    std::string Album(const PickerAlbum& album, std::size_t) const override {
        std::string links;
        for (const AlbumAction& action : AlbumActions) {
            links += Link(RequestUrl(action.action, album, 0), action.style, action.caption,
                          LabelOf(action, album));
        }
        return links;
    }

    std::string Track(const PickerAlbum& album, std::size_t,
                      const PickerTrack& track) const override {
        if (track.number == 0) return "";
        return Link(RequestUrl("add", album, track.number), "picker-button small", "Add",
                    Label("Add", " ", track.title));
    }

    std::string SavePlaylist() const override { return SaveForm(""); }

    std::string ClearPlaylist() const override {
        return Link(ClearUrl(), "picker-button", ClearCaption, "");
    }

  private:
    static std::string Link(std::string_view url, std::string_view style, std::string_view caption,
                            std::string_view label) {
        return "<a href='" + std::string(url) + '\'' + Class(style) + std::string(label) + '>' +
               std::string(caption) + "</a>";
    }
};

class FormButtons : public PlayerButtons {
  public:
    std::string Album(const PickerAlbum& album, std::size_t number) const override {
        std::string form = PlayerFormStart();
        for (const AlbumAction& action : AlbumActions) {
            form += "<button type='submit' name='ClientAction' value='" +
                    std::string(action.action) + '\'' + Class(action.style) +
                    LabelOf(action, album) + '>' + std::string(action.caption) + "</button>";
        }
        form += HiddenValue("CDJID", album.cdjid) + HiddenValue("ref", "0") +
                HiddenValue("Frame", FormFrame) + "</form>";
        return form + TracksForm(album, number);
    }

    std::string Track(const PickerAlbum&, std::size_t number,
                      const PickerTrack& track) const override {
        if (track.number == 0) return "";
        return "<button type='submit' form='" + TracksFormId(number) + "' name='ref' value='" +
               std::to_string(track.number) + '\'' + Class("picker-button small") +
               Label("Add", " ", track.title) + ">Add</button>";
    }

    std::string SavePlaylist() const override {
        return SaveForm(" name='save' value='Save Playlist'");
    }

    std::string ClearPlaylist() const override {
        return PlayerFormStart() +
               "<button type='submit' name='clear' value='Clear Playlist' class='picker-button'>" +
               std::string(ClearCaption) + "</button>" + HiddenValue("ClientAction", "clear") +
               HiddenValue("Frame", FormFrame) + "</form>";
    }

  private:
    static std::string TracksFormId(std::size_t number) {
        return "tracks" + std::to_string(number + 1);
    }

    /// One form for all tracks of an album: each button in its row sends its own number with it.
    static std::string TracksForm(const PickerAlbum& album, std::size_t number) {
        return "<form id='" + TracksFormId(number) + "' action='" + std::string(PlayerPage) +
               "' method='get' hidden>" + HiddenValue("ClientAction", "add") +
               HiddenValue("add", "Add") + HiddenValue("CDJID", album.cdjid) +
               HiddenValue("Frame", FormFrame) + "</form>";
    }
};

}  // namespace

std::unique_ptr<PlayerButtons> MakePlayerButtons(bool forms) {
    if (forms) return std::make_unique<FormButtons>();
    return std::make_unique<LinkButtons>();
}

}  // namespace quillon
