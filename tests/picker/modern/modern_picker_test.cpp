#include <gmock/gmock.h>

#include "picker/html.h"
#include "tests/picker/modern/fixture.h"

namespace quillon {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

class ModernPickerTest : public ModernFixture {};

TEST_F(ModernPickerTest, MakesTheSamePagesByNumberAndViewsBesideThem) {
    AddAlbums(31);
    Execute("UPDATE Albums SET DateAdded=#2026-03-01# WHERE Title='Album 0002'");
    Execute(
        "INSERT INTO Spinner (Artist, Album, Song, Genre) VALUES ('artist 0002', 'Album 0002', "
        "'x', 'Jazz')");
    Build();
    EXPECT_THAT(log, IsEmpty());
    EXPECT_EQ(run.counts.pagesWritten, 6U);
    EXPECT_THAT(
        Names(Folder),
        ElementsAre("AlbumPicker.css", "AlbumPicker.js", "AlbumPicker0.asp", "AlbumPicker1.asp",
                    "AlbumPicker2.asp", "AlbumPicker3.asp", "AlbumPickerAlbums.js",
                    "AlbumPickerGenres1.asp", "AlbumPickerNew1.asp", "AlbumPickerTracks.js"));
    EXPECT_EQ(Count(Page(0), "<b><bdi>"), 31U);
    EXPECT_EQ(Count(Page(2), "<article "), 15U);
    EXPECT_EQ(Count(Page(3), "<article "), 1U);
    EXPECT_THAT(File("AlbumPickerGenres1.asp"), HasSubstr("<bdi>Jazz</bdi>"));
    EXPECT_THAT(File("AlbumPickerNew1.asp"), HasSubstr("<bdi>March 2026</bdi>"));
}

TEST_F(ModernPickerTest, StartsAndEndsEachPageWithTheHostsHeadAndFoot) {
    AddAlbums(1);
    Build();
    EXPECT_THAT(Page(0), StartsWith(PageHead("Album Picker Index Page")));
    EXPECT_THAT(Page(1), StartsWith(PageHead("Album Picker Page 1")));
    for (const int page : {0, 1})
        EXPECT_TRUE(Page(page).ends_with(PageFoot())) << page;
}

TEST_F(ModernPickerTest, SaysOnTheIndexThatThereAreNoAlbums) {
    Build();
    EXPECT_THAT(log, IsEmpty());
    EXPECT_THAT(Names(Folder), ElementsAre("AlbumPicker.css", "AlbumPicker.js", "AlbumPicker0.asp",
                                           "AlbumPickerAlbums.js", "AlbumPickerTracks.js"));
    EXPECT_THAT(Page(0), HasSubstr("No albums to pick from: 0 albums in the library, none with at "
                                   "least 8 tracks."));
}

TEST_F(ModernPickerTest, LinksCoverAndTitleTogetherToTheAlbumsPlace) {
    AddAlbumWithCover("1", "a.jpg", "picture");
    Build();
    const std::string name = ThumbnailNames().at(0);
    EXPECT_THAT(Page(0),
                HasSubstr("<a href='/Quillon/AlbumPicker/AlbumPicker1.asp#album1'>"
                          "<img class='picker-cover' src='/Quillon/albumcovers/thumbnails/" +
                          name +
                          "' alt='' width='320' height='320'><b><bdi>Album 1</bdi></b>"
                          "<span><bdi>Alder</bdi></span></a>"));
    EXPECT_THAT(Page(1), HasSubstr("<article id='album1'"));
}

TEST_F(ModernPickerTest, LoadsCoversBelowTheFirstOnesLate) {
    for (int i = 10; i < 30; ++i)
        AddAlbumWithCover(std::to_string(i), "a.jpg", "picture");
    Build();
    EXPECT_EQ(Count(Page(0), "<img "), 20U);
    EXPECT_EQ(Count(Page(0), " loading='lazy'"), 8U);
}

TEST_F(ModernPickerTest, ShowsInitialsForAMissingCover) {
    AddAlbum({.cdjid = "1", .artist = "Alder", .title = "First <Light>"});
    Build();
    for (const int page : {0, 1}) {
        EXPECT_THAT(Page(page), HasSubstr("aria-hidden='true'><span>FL</span></span>")) << page;
        EXPECT_THAT(Page(page), Not(HasSubstr("<img"))) << page;
    }
}

TEST_F(ModernPickerTest, LeadsFromTheBarToLettersOnWhateverPage) {
    for (int i = 0; i < 250; ++i)
        AddAlbum({.cdjid = std::to_string(i),
                  .artist = "Alder " + std::to_string(i),
                  .title = "x",
                  .tracks = 8});
    AddAlbum({.cdjid = "B", .artist = "Birch", .title = "y"});
    Build();
    EXPECT_THAT(Page(0),
                AllOf(HasSubstr("<a href='#section1'><bdi>A</bdi></a>"),
                      HasSubstr("<a href='AlbumPickerArtists2.asp#section2'><bdi>B</bdi></a>"),
                      HasSubstr("href='AlbumPickerArtists2.asp'>Next")));
    EXPECT_EQ(Count(Page(0), "<b><bdi>"), 240U);
    EXPECT_THAT(File("AlbumPickerArtists2.asp"),
                AllOf(HasSubstr("continued"), HasSubstr("<h2 id='section2'><bdi>B</bdi></h2>"),
                      HasSubstr("href='AlbumPicker0.asp'>Previous")));
    // Each page's way back leads to where its first album is.
    EXPECT_THAT(Page(17), HasSubstr("href='AlbumPickerArtists2.asp#page17'>Back to Album Listing"));
    EXPECT_THAT(File("AlbumPickerArtists2.asp"), HasSubstr(" id='page17'"));
}

TEST_F(ModernPickerTest, LeavesOutTimesThatAreNotKnown) {
    AddAlbum({.cdjid = "1", .artist = "Alder", .title = "Some"});
    AddAlbum({.cdjid = "2", .artist = "Birch", .title = "None"});
    Execute("UPDATE Tracks SET Minutes=-1, Seconds=-1 WHERE CDJID='2' OR Track=3");
    Build();
    const std::string page = Page(1);
    const std::string some = page.substr(0, page.find("id='album2'"));
    const std::string none = page.substr(some.size());
    EXPECT_THAT(some, AllOf(HasSubstr("<th scope='col'>Time</th>"), HasSubstr("<td>2:02</td>"),
                            HasSubstr("<p>8 tracks</p>")));
    EXPECT_THAT(some, HasSubstr("<th scope='row'><bdi>Song 3</bdi></th><td></td>"));
    EXPECT_THAT(none, Not(HasSubstr("Time")));
    EXPECT_THAT(none, HasSubstr("<p>8 tracks</p>"));
}

TEST_F(ModernPickerTest, NamesArtistsOfTracksWhereTheyAreTheirOwn) {
    AddAlbum({.cdjid = "1", .artist = "Various", .title = "Hits"});
    Execute("UPDATE Tracks SET Artist='Various'");
    Execute("UPDATE Tracks SET Artist='Birch & Co' WHERE Track=3");
    Build();
    EXPECT_THAT(Page(1), Not(HasSubstr("Birch")));
    run.modern.keepsTrackArtists = true;
    Build();
    EXPECT_THAT(Page(1), HasSubstr("<th scope='row'><bdi>Song 3</bdi> <span class='picker-more'>"
                                   "<bdi>Birch &#38; Co</bdi></span></th>"));
    EXPECT_THAT(Page(1), HasSubstr("<th scope='row'><bdi>Song 2</bdi></th>"));
}

TEST_F(ModernPickerTest, AddsUpTheTimesOfAllTracks) {
    AddAlbum({.cdjid = "1", .artist = "Alder", .title = "One"});
    Build();
    EXPECT_THAT(Page(1), HasSubstr("<p>8 tracks, 36:36</p>"));
}

TEST_F(ModernPickerTest, KeepsTextsThatTryToBeMoreOutOfPagesAndData) {
    const std::string hostile = "<% x %></script>'\"&";
    AddAlbum({.cdjid = "1", .artist = hostile, .title = hostile});
    Execute("UPDATE Tracks SET Title='</script><%' WHERE Track=1");
    Build();
    for (const int page : {0, 1}) {
        EXPECT_EQ(Count(Page(page), "<%"), 2U) << page;
        EXPECT_EQ(Count(Page(page), "</script>"), 1U) << page;
        EXPECT_THAT(Page(page), HasSubstr(HtmlText(hostile))) << page;
    }
    for (const char* data : {"AlbumPickerAlbums.js", "AlbumPickerTracks.js"})
        EXPECT_EQ(File(data).find_first_of("<>%'&"), std::string::npos) << data;
    EXPECT_THAT(File("AlbumPickerAlbums.js"), HasSubstr(ScriptText(hostile)));
}

TEST_F(ModernPickerTest, GivesTheScriptAllArtistsAlbumsAndTracks) {
    AddAlbum({.cdjid = "1", .artist = "Alder", .title = "One"});
    AddAlbum({.cdjid = "2", .artist = "Alder", .title = "Two \u00e9"});
    AddAlbum({.cdjid = "3", .artist = "Birch", .title = "Three"});
    Build();
    const std::string albums = File("AlbumPickerAlbums.js"), tracks = File("AlbumPickerTracks.js");
    EXPECT_THAT(albums, StartsWith(R"(quillonPicker.albums([["Alder",[["One","O",)"));
    EXPECT_THAT(albums, HasSubstr(R"(["Two \u00E9",)"));
    EXPECT_THAT(albums, HasSubstr("\n[\"Birch\",[[\"Three\","));
    EXPECT_THAT(tracks, StartsWith(R"(quillonPicker.tracks([["Song 1","Song 2",)"));
    EXPECT_EQ(Count(tracks, "\"Song 8\"]"), 3U);
}

TEST_F(ModernPickerTest, WritesNothingWhereNothingHasChanged) {
    AddAlbums(20);
    AddAlbumWithCover("x", "a.jpg", "picture");
    Build();
    run.counts.pagesWritten = 0;
    EXPECT_THAT(ChangesOfAnotherBuild(), IsEmpty());
    EXPECT_EQ(run.counts.pagesWritten, 0U);
    EXPECT_THAT(thumbnails.made, SizeIs(1));
}

TEST_F(ModernPickerTest, ReplacesAllPagesWhereOneWouldBeAnother) {
    AddAlbums(2);
    Build();
    Execute("UPDATE Tracks SET Title='Another' WHERE Track=3");
    EXPECT_THAT(ChangesOfAnotherBuild(),
                Contains("MoveFolder " + std::string(Folder) + ".new -> " + Folder));
    EXPECT_THAT(Page(1), HasSubstr("Another"));
}

TEST_F(ModernPickerTest, RemovesAFileThatIsNotOfTheSet) {
    AddAlbums(2);
    Build();
    files.AddFile(std::string(Folder) + R"(\AlbumPicker9.asp)", "old");
    Build();
    EXPECT_FALSE(HasPage(9));
}

TEST_F(ModernPickerTest, ReplacesTheClassicPagesAndIsReplacedByThem) {
    AddAlbums(2);
    run.modern.hasModernPicker = false;
    Build();
    const std::vector<std::string> classic = Names(Folder);
    run.modern.hasModernPicker = true;
    Build();
    EXPECT_THAT(Names(Folder), Contains("AlbumPicker.js"));
    run.modern.hasModernPicker = false;
    Build();
    EXPECT_EQ(Names(Folder), classic);
}

TEST_F(ModernPickerTest, KeepsTheOldPagesWhenAPageCannotBeWritten) {
    AddAlbums(16);
    files.AddFile(PagePath(0), "an old page");
    world.calls.Refuse(R"(CreateText C:\HomeSeer\HTML\Quillon\AlbumPicker.new\AlbumPicker2.asp)",
                       FailureNumber::DiskFull, "AlbumPicker2.asp");
    Build();
    EXPECT_THAT(log, ElementsAre("Quillon: BuildcdjPages  Line 5 Disk full: AlbumPicker2.asp"));
    EXPECT_THAT(Names(Folder), ElementsAre("AlbumPicker0.asp"));
    EXPECT_EQ(run.counts.pagesWritten, 0U);
}

TEST_F(ModernPickerTest, KeepsTheOldPagesWhenItIsAborted) {
    AddAlbums(20);
    files.AddFile(PagePath(0), "an old page");
    world.window.PressAbortWhen(
        [](const FormState& state) { return state.aItem == "3. On Page 2, Artist Artist 0017"; });
    Build();
    EXPECT_THAT(Names(Folder), ElementsAre("AlbumPicker0.asp"));
    EXPECT_FALSE(files.FolderExists(std::string(Folder) + ".new"));
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(ModernPickerTest, PutsTheSetBackThatAKilledBuildHasPutAside) {
    AddAlbums(2);
    Build();
    files.MoveFolder(Folder, std::string(Folder) + ".old");
    files.AddFile(std::string(Folder) + R"(.new\AlbumPicker0.asp)", "half a set");
    Build();
    EXPECT_THAT(Names(Base), ElementsAre("albumcovers\\", "AlbumPicker\\"));
    EXPECT_TRUE(HasPage(1));
}

TEST_F(ModernPickerTest, OffersTheSameRequestsAsFormsAndAsLinks) {
    AddAlbum({.cdjid = "A&1", .artist = "Alder", .title = "One"});
    Build();
    for (const char* action : {"play", "next", "add"}) {
        EXPECT_THAT(Page(1), HasSubstr("href='/Quillon/Quillon.asp?Frame=Picker&ClientAction=" +
                                       std::string(action) + "&CDJID=A%261&ref=0'"));
    }
    EXPECT_THAT(Page(1), HasSubstr("ClientAction=add&CDJID=A%261&ref=3'"));
    EXPECT_THAT(Page(1), HasSubstr("?Frame=Picker&ClientAction=clear'"));
    run.settings.PickerFormatOption = true;
    Build();
    for (const char* action : {"play", "next", "add"}) {
        EXPECT_THAT(Page(1), HasSubstr("name='ClientAction' value='" + std::string(action) + '\''));
    }
    EXPECT_THAT(
        Page(1),
        AllOf(HasSubstr("name='CDJID' value='A&#38;1'"), HasSubstr("name='ref' value='0'"),
              HasSubstr("name='ref' value='3'"), HasSubstr("name='ClientAction' value='clear'"),
              HasSubstr("name='filename'"), HasSubstr("name='Frame' value='picker'")));
}

TEST_F(ModernPickerTest, OffersNoAddForATrackWithoutNumber) {
    AddAlbum({.cdjid = "1", .artist = "Alder", .title = "One"});
    Execute("UPDATE Tracks SET Track=0 WHERE Track=2");
    Build();
    EXPECT_EQ(Count(Page(1), "aria-label='Add Song"), 7U);
}

}  // namespace
}  // namespace quillon
