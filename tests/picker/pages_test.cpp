#include "picker/pages.h"

#include <gmock/gmock.h>

#include "picker/html.h"
#include "tests/picker/fixture.h"

namespace quillon {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class PickerPagesTest : public PickerFixture {
  protected:
    void BuildOne(const std::string& artist, const std::string& title) {
        run.settings.PickerMinimum = 1;
        AddAlbum({"252E671073EC0001", artist, title, 2});
        Build();
    }
};

TEST_F(PickerPagesTest, BeginWithTheHostsHeadAndEndWithItsFoot) {
    BuildOne("Alder", "One");
    EXPECT_TRUE(Page(0).starts_with(PageHead("Album Picker Index Page")));
    EXPECT_TRUE(Page(1).starts_with(PageHead("Album Picker Page 1")));
    for (const int page : {0, 1})
        EXPECT_TRUE(Page(page).ends_with("\r\n<%Response.Write CustomFooter()%>")) << page;
}

TEST_F(PickerPagesTest, HaveABarWithTheWayBackToThePlayer) {
    BuildOne("Alder", "One");
    for (const int page : {0, 1}) {
        EXPECT_THAT(Page(page), HasSubstr("<table cellspacing='0' cellpadding='0'><tr>"
                                          "<td width='300'>"));
        EXPECT_THAT(Page(page), HasSubstr("</td><td><center>"));
        EXPECT_THAT(Page(page), HasSubstr(" <a href='/Quillon/Quillon.asp'>NowPlaying</a>\r\n"
                                          "</center></td></tr></table>"));
        EXPECT_EQ(Count(Page(page), "<form name='savePlaylist'"), 1U);
        EXPECT_EQ(Count(Page(page), "<br><center>"), 1U);
    }
}

TEST_F(PickerPagesTest, ShowAnAlbumWithItsDataAndTracks) {
    BuildOne("Alder", "First Light");
    EXPECT_THAT(Page(1), HasSubstr("<img src=/Quillon/albumcovers/notfnd.jpg "
                                   "alt='Cover of First Light' width=200 height=200></td><td>"));
    EXPECT_THAT(Page(1), HasSubstr("<li>Album:<h2 dir='auto'>First Light</h2>"));
    EXPECT_THAT(Page(1), HasSubstr("<li>Artist:<bdi>Alder</bdi>"));
    EXPECT_THAT(Page(1), HasSubstr("<li>Tracks: 2</li>"));
    EXPECT_THAT(Page(1), HasSubstr("<li>Time: 3:03</li>"));
    EXPECT_THAT(Page(1), HasSubstr("<center><b>Track Name</b></center></td>"
                                   "<td width='54'><b>Time</b></td>"));
    EXPECT_THAT(Page(1), HasSubstr("<b><center>Add To Playlist</b></center>"));
    EXPECT_THAT(Page(1), HasSubstr("<tr><td><bdi>Song 2</bdi></td><td width='54'> 2:02</td><td>"
                                   "<A HREF=/Quillon/Quillon.asp?Frame=Picker&ClientAction=add"
                                   "&CDJID=252E671073EC0001&ref=2 "));
}

TEST_F(PickerPagesTest, ShowAThumbnailThatLeadsToTheAlbum) {
    BuildOne("Alder", "First Light");
    EXPECT_THAT(Page(0), HasSubstr("<td valign='top'><a href=/Quillon/AlbumPicker/AlbumPicker1.asp"
                                   "#album1 id='page1'><img src=/Quillon/albumcovers/notfnd.jpg "
                                   "alt='First Light by Alder' loading='lazy' "
                                   "width=100 height=100></a><br>"
                                   "<bdi>Alder</bdi><br><bdi>First Light</bdi></td>"));
    EXPECT_THAT(Page(1), HasSubstr("<td valign='top' id='album1'>"));
}

TEST_F(PickerPagesTest, LeadFromTheIndexToTheRightPage) {
    AddAlbums(31);
    Build();
    EXPECT_THAT(Page(0), HasSubstr("AlbumPicker1.asp#album15>"));
    EXPECT_THAT(Page(0), HasSubstr("AlbumPicker2.asp#album16 id='page2'>"));
    EXPECT_THAT(Page(0), HasSubstr("AlbumPicker3.asp#album31 id='page3'>"));
    EXPECT_THAT(Page(2), HasSubstr("id='album16'"));
    EXPECT_THAT(Page(2), HasSubstr("AlbumPicker0.asp#page2>"));
}

TEST_F(PickerPagesTest, HaveButtonsInTheOtherForm) {
    run.settings.PickerFormatOption = true;
    BuildOne("Alder", "One");
    EXPECT_THAT(Page(1), HasSubstr("<input type='submit' name='ClientAction' value = 'play'>"));
    EXPECT_THAT(Page(1), HasSubstr("<input type='submit' value='Album Listing'></form>"));
    EXPECT_THAT(Page(1), Not(HasSubstr("<A HREF")));
    EXPECT_THAT(Page(0), HasSubstr("<input type='submit' name='save' value = 'Save Playlist'>"));
}

TEST_F(PickerPagesTest, ShowHostileTextsAsText) {
    BuildOne("</td><script>alert('x')</script>", "<%Response.Redirect(\"x\")%> & \"q\"");
    Execute("UPDATE Tracks SET Title='<img src=x onerror=y>'");
    Build();
    for (const int page : {0, 1}) {
        const std::string text = Page(page);
        EXPECT_EQ(Count(text, "<%"), 2U) << page;
        EXPECT_EQ(Count(text, "<script"), 0U) << page;
        EXPECT_EQ(Count(text, "<img src=x"), 0U) << page;
        EXPECT_THAT(text,
                    HasSubstr("&#60;%Response.Redirect(&#34;x&#34;)%&#62; &#38; &#34;q&#34;"));
        EXPECT_THAT(text, HasSubstr("&#60;/td&#62;&#60;script&#62;alert(&#39;x&#39;)"));
    }
    EXPECT_THAT(Page(1), HasSubstr("<bdi>&#60;img src=x onerror=y&#62;</bdi>"));
}

TEST_F(PickerPagesTest, EncodeTheCoversWebPath) {
    run.settings.coverPath = "/my covers & \"more\"/";
    files.AddFolder(R"(C:\HomeSeer\HTML\my covers & "more")");
    BuildOne("Alder", "One");
    EXPECT_THAT(files.Content(R"(C:\HomeSeer\HTML\AlbumPicker\AlbumPicker1.asp)"),
                HasSubstr("<img src=/my%20covers%20%26%20%22more%22/notfnd.jpg alt="));
}

TEST_F(PickerPagesTest, TellHowManyAlbumsThereAre) {
    AddAlbum({"1", "Alder", "One"});
    Build();
    EXPECT_THAT(Page(0), HasSubstr("<p>1 album, by artist.</p>"));
    run.settings.PickerMinimum = 1;
    AddAlbum({"2", "Alder", "Two", 0});
    Build();
    EXPECT_THAT(Page(0), HasSubstr("<p>1 of 2 albums in the library, by artist: those with at "
                                   "least 1 track.</p>"));
}

TEST_F(PickerPagesTest, AreAsciiAlone) {
    BuildOne("Ölvindr Skógur", "שיר");
    for (const int page : {0, 1}) {
        const std::string text = Page(page);
        EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char c) { return c > 0; })) << page;
    }
}

}  // namespace
}  // namespace quillon
