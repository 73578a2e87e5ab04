#include "picker/controls.h"

#include <gmock/gmock.h>
#include <memory>

#include "picker/forms.h"
#include "picker/links.h"

namespace quillon {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* Player = "/Quillon/Quillon.asp";

PickerAlbum Album(const std::string& cdjid) {
    PickerAlbum album;
    album.cdjid = cdjid;
    return album;
}

class LinksTest : public ::testing::Test {
  protected:
    std::unique_ptr<PickerControls> controls = std::make_unique<PickerLinks>();
};

class FormsTest : public ::testing::Test {
  protected:
    std::unique_ptr<PickerControls> controls = std::make_unique<PickerForms>();
};

TEST_F(LinksTest, AddQueueAndPlayAnAlbum) {
    const std::string request = "<A HREF=/Quillon/Quillon.asp?Frame=Picker&ClientAction=";
    EXPECT_EQ(controls->Album(Album("252E671073EC0001")),
              request + "add&CDJID=252E671073EC0001&ref=0>Add</a> | " + request +
                  "next&CDJID=252E671073EC0001&ref=0>Play Next</a> | " + request +
                  "play&CDJID=252E671073EC0001&ref=0>Play</a>");
}

TEST_F(LinksTest, AddATrackByItsNumber) {
    EXPECT_EQ(controls->Track(Album("77"), {3, "D'Arcy > \"Moon\"", {}}),
              "<A HREF=/Quillon/Quillon.asp?Frame=Picker&ClientAction=add&CDJID=77&ref=3 "
              "aria-label='Add D&#39;Arcy &#62; &#34;Moon&#34;'>Add</a>");
}

TEST_F(LinksTest, OfferNothingForATrackWithoutANumber) {
    EXPECT_EQ(controls->Track(Album("77"), {0, "Lost", {}}), "");
}

TEST_F(LinksTest, CarryIdentifiersThatCannotBecomeAnythingElse) {
    EXPECT_THAT(controls->Album(Album("1&ref=9 onclick=x>'\"")),
                HasSubstr("&CDJID=1%26ref%3D9%20onclick%3Dx%3E%27%22&ref=0>"));
}

TEST_F(LinksTest, SaveThePlaylist) {
    const std::string form = controls->SavePlaylist();
    EXPECT_THAT(form, HasSubstr(std::string("<form name='savePlaylist' action=") + Player));
    EXPECT_THAT(form, HasSubstr("Playlist Name: "
                                "<input type='text' name='filename' value = '' size='30'>"));
    EXPECT_THAT(form, HasSubstr("<input type='hidden' name='ClientAction' value = 'save'>"));
    EXPECT_THAT(form, HasSubstr("<a href=\"javascript:document.savePlaylist.submit()\">"
                                "Save Playlist | </a>"));
}

TEST_F(LinksTest, LeadFromAPageInTheMiddle) {
    EXPECT_EQ(controls->Navigation(2, 3),
              "<a href=AlbumPicker0.asp#page2>Back to Album Listing</a> | "
              "<a href=/Quillon/Quillon.asp?Frame=Picker&ClientAction=clear>"
              "Clear Current Playlist</a> | "
              "<a href=AlbumPicker1.asp>First</a> | <a href=AlbumPicker0.asp>Index</a> | "
              "<a href=AlbumPicker1.asp>Previous</a> | <a href=AlbumPicker3.asp>Next</a> | "
              "<a href=AlbumPicker3.asp>Last</a> | <a href=AlbumPicker1.asp>Page 1</a>     | "
              "<a href=AlbumPicker2.asp aria-current='page'>Page 2</a>     | "
              "<a href=AlbumPicker3.asp>Page 3</a>    ");
}

TEST_F(LinksTest, LeadToNoPageBeforeTheFirstOrBehindTheLast) {
    EXPECT_THAT(controls->Navigation(1, 3), Not(HasSubstr("Previous")));
    EXPECT_THAT(controls->Navigation(1, 3), HasSubstr("<a href=AlbumPicker2.asp>Next</a> | "));
    EXPECT_THAT(controls->Navigation(3, 3), Not(HasSubstr("Next")));
    EXPECT_THAT(controls->Navigation(3, 3),
                HasSubstr("<a href=AlbumPicker2.asp>Previous</a> | <a href="));
    EXPECT_THAT(controls->Navigation(1, 1), Not(HasSubstr("Next")));
    EXPECT_THAT(controls->Navigation(1, 1), Not(HasSubstr("Previous")));
}

TEST_F(LinksTest, LeadFromTheIndexToAllPages) {
    EXPECT_EQ(controls->Navigation(0, 2),
              "<a href=/Quillon/Quillon.asp?Frame=Picker&ClientAction=clear>"
              "Clear Current Playlist</a> | "
              "<a href=AlbumPicker1.asp>First</a> | "
              "<a href=AlbumPicker0.asp aria-current='page'>Index</a> | "
              "<a href=AlbumPicker2.asp>Last</a> | "
              "<a href=AlbumPicker1.asp>Page 1</a>     | <a href=AlbumPicker2.asp>Page 2</a>    ");
}

TEST_F(LinksTest, LeadNowhereWithoutPages) {
    EXPECT_EQ(controls->Navigation(0, 0),
              "<a href=/Quillon/Quillon.asp?Frame=Picker&ClientAction=clear>"
              "Clear Current Playlist</a> | "
              "<a href=AlbumPicker0.asp aria-current='page'>Index</a>");
}

TEST_F(FormsTest, AddQueueAndPlayAnAlbum) {
    EXPECT_EQ(controls->Album(Album("252E671073EC0001")),
              "<form action='/Quillon/Quillon.asp' method='get'>"
              "<input type='submit' name='ClientAction' value = 'add'>"
              "<input type='submit' name='ClientAction' value = 'next'>"
              "<input type='submit' name='ClientAction' value = 'play'>"
              "<input type='hidden' name='CDJID' value='252E671073EC0001'>"
              "<input type='hidden' name='ref' value='0'>"
              "<input type='hidden' name='Frame' value='picker'></form>");
}

TEST_F(FormsTest, AddATrackByItsNumber) {
    EXPECT_EQ(controls->Track(Album("77"), {3, "It's", {}}),
              "<form action='/Quillon/Quillon.asp' method='get'>"
              "<input type='hidden' name='ClientAction' value = 'add'>"
              "<input type='submit' name='add' value = 'Add' aria-label='Add It&#39;s'>"
              "<input type='hidden' name='CDJID' value='77'>"
              "<input type='hidden' name='ref' value='3'>"
              "<input type='hidden' name='Frame' value='picker'></form>");
    EXPECT_EQ(controls->Track(Album("77"), {0, "Lost", {}}), "");
}

TEST_F(FormsTest, CarryIdentifiersThatCannotBecomeAnythingElse) {
    EXPECT_THAT(controls->Album(Album("'><script>")),
                HasSubstr("name='CDJID' value='&#39;&#62;&#60;script&#62;'>"));
}

TEST_F(FormsTest, SaveThePlaylist) {
    const std::string form = controls->SavePlaylist();
    EXPECT_THAT(form, HasSubstr(std::string("<form name='savePlaylist' action=") + Player));
    EXPECT_THAT(form, HasSubstr("Playlist Name: "
                                "<input type='text' name='filename' value = '' size='30'>"));
    EXPECT_THAT(form, HasSubstr("<input type='submit' name='save' value = 'Save Playlist'>"));
    EXPECT_THAT(form, HasSubstr("<input type='hidden' name='ClientAction' value = 'save'>"));
    EXPECT_THAT(form, Not(HasSubstr("javascript")));
}

TEST_F(FormsTest, LeadFromAPageInTheMiddle) {
    const auto button = [](const std::string& page, const std::string& caption) {
        return "<form action='" + page + "' method='get'><input type='submit' value='" + caption +
               "'></form>";
    };
    EXPECT_EQ(controls->Navigation(2, 3),
              button("AlbumPicker0.asp#page2", "Album Listing") +
                  "<form action='/Quillon/Quillon.asp' method='get'>"
                  "<input type='submit' name='clear' value = 'Clear Playlist'>"
                  "<input type='hidden' name='ClientAction' value = 'clear'>"
                  "<input type='hidden' name='Frame' value='picker'></form>" +
                  button("AlbumPicker1.asp", "First") + button("AlbumPicker0.asp", "Index") +
                  button("AlbumPicker1.asp", "Previous") + button("AlbumPicker3.asp", "Next") +
                  button("AlbumPicker3.asp", "Last") + "<br>" + NumberedPages(2, 3));
}

TEST_F(FormsTest, LeadToNoPageBeforeTheFirstOrBehindTheLast) {
    EXPECT_THAT(controls->Navigation(1, 2), Not(HasSubstr("'Previous'")));
    EXPECT_THAT(controls->Navigation(2, 2), Not(HasSubstr("'Next'")));
    EXPECT_THAT(controls->Navigation(0, 2), Not(HasSubstr("'Next'")));
    EXPECT_THAT(controls->Navigation(0, 0), Not(HasSubstr("'First'")));
    EXPECT_THAT(controls->Navigation(0, 0), HasSubstr("'Clear Playlist'"));
}

TEST(NumberedPages, AreAllOnTheIndex) {
    const std::string list = NumberedPages(0, 500);
    EXPECT_THAT(list, HasSubstr("<a href=AlbumPicker1.asp>Page 1</a>     | <a href="));
    EXPECT_THAT(list, HasSubstr("<a href=AlbumPicker250.asp>Page 250</a>    "));
    EXPECT_TRUE(list.ends_with("<a href=AlbumPicker500.asp>Page 500</a>    "));
}

TEST(NumberedPages, AreThoseNearByOnAnAlbumPage) {
    const std::string list = NumberedPages(50, 500);
    EXPECT_TRUE(list.starts_with("<a href=AlbumPicker40.asp>Page 40</a>"));
    EXPECT_TRUE(list.ends_with(">Page 60</a>    "));
    EXPECT_TRUE(NumberedPages(3, 500).starts_with("<a href=AlbumPicker1.asp>"));
    EXPECT_TRUE(NumberedPages(498, 500).ends_with(">Page 500</a>    "));
}

}  // namespace
}  // namespace quillon
