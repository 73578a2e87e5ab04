#include "picker/album_picker.h"

#include <gmock/gmock.h>

#include "tests/picker/fixture.h"
#include "tests/support/progress_watch.h"

namespace quillon {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* OldPage = "an old page";

class AlbumPickerTest : public PickerFixture {
  protected:
    void AddOldSet() {
        files.AddFile(PagePath(0), OldPage);
        files.AddFile(PagePath(99), OldPage);
    }

    void ExpectOldSet() {
        EXPECT_THAT(Names(Folder), ElementsAre("AlbumPicker0.asp", "AlbumPicker99.asp"));
        EXPECT_EQ(Page(0), OldPage);
        EXPECT_FALSE(files.FolderExists(std::string(Folder) + ".new"));
        EXPECT_FALSE(files.FolderExists(std::string(Folder) + ".old"));
    }

    void BuildExpectingOldSetAndLog(const std::string& line) {
        AddOldSet();
        log.clear();
        Build();
        ExpectOldSet();
        EXPECT_EQ(run.counts.pagesWritten, 0U);
        EXPECT_THAT(log, ElementsAre(line));
    }
};

TEST_F(AlbumPickerTest, MakesThreePagesOf31Albums) {
    AddAlbums(31);
    Build();
    EXPECT_THAT(log, IsEmpty());
    EXPECT_EQ(run.counts.pagesWritten, 4U);
    EXPECT_THAT(Names(Folder),
                ElementsAre("AlbumPicker.css", "AlbumPicker0.asp", "AlbumPicker1.asp",
                            "AlbumPicker2.asp", "AlbumPicker3.asp"));
    EXPECT_EQ(Count(Page(0), " width=100 height=100>"), 31U);
    EXPECT_EQ(Count(Page(1), " width=200 height=200>"), 15U);
    EXPECT_EQ(Count(Page(2), " width=200 height=200>"), 15U);
    EXPECT_EQ(Count(Page(3), " width=200 height=200>"), 1U);
    EXPECT_THAT(Page(3), HasSubstr("<h2 dir='auto'>Album 0031</h2>"));
}

TEST_F(AlbumPickerTest, LeavesOutAlbumsWithTooFewTracks) {
    AddAlbum({"1", "Alder", "Eight", 8});
    AddAlbum({"2", "Alder", "Seven", 7});
    Build();
    for (const int page : {0, 1}) {
        EXPECT_THAT(Page(page), HasSubstr("Eight")) << page;
        EXPECT_THAT(Page(page), Not(HasSubstr("Seven"))) << page;
    }
    EXPECT_THAT(Page(0), HasSubstr("1 of 2 albums in the library, by artist: those with at least "
                                   "8 tracks."));
}

TEST_F(AlbumPickerTest, ShowsWhatItIsAtWorkOn) {
    run.settings.ImagesWide = 1;
    run.settings.ImagesHigh = 1;
    AddAlbum({"1", "Alder", "One"});
    AddAlbum({"2", "Birch <&>", "Two"});
    Build();
    EXPECT_THAT(Items(),
                ElementsAre("1. Generating Album Picker Files\"",
                            "2. Copying Covers from Library to Web Server area",
                            "3. On Page 1, Artist Alder", "3. On Page 2, Artist Birch <&>"));
}

TEST_F(AlbumPickerTest, OpensAConnectionOfItsOwn) {
    run.settings.Nirvis_CDJ_DB = R"(D:\cdj.mdb)";
    Build();
    EXPECT_THAT(databases.opened,
                ElementsAre("Provider=Microsoft.Jet.OLEDB.4.0;Persist Security Info=False;"
                            R"(Data Source='D:\cdj.mdb')"));
}

TEST_F(AlbumPickerTest, SaysOnTheIndexThatThereAreNoAlbums) {
    Build();
    EXPECT_THAT(log, IsEmpty());
    EXPECT_THAT(Names(Folder), ElementsAre("AlbumPicker.css", "AlbumPicker0.asp"));
    EXPECT_THAT(Page(0), HasSubstr("<p>No albums to pick from: 0 albums in the library, none with "
                                   "at least 8 tracks.</p>"));
    EXPECT_THAT(Page(0), Not(HasSubstr("AlbumPicker1.asp")));
}

TEST_F(AlbumPickerTest, FillsOnePageExactly) {
    AddAlbums(15);
    Build();
    EXPECT_TRUE(HasPage(1));
    EXPECT_FALSE(HasPage(2));
    EXPECT_EQ(Count(Page(1), "</tr><tr>\r\n<td valign='top'"), 2U);
}

TEST_F(AlbumPickerTest, StartsARowAfterEachOfTheAlbumsInIt) {
    run.settings.ImagesWide = 2;
    AddAlbums(5);
    Build();
    for (const int page : {0, 1})
        EXPECT_EQ(Count(Page(page), "</tr><tr>\r\n<td valign='top'"), 2U) << page;
    EXPECT_EQ(Count(Page(0), "</tr></table>\r\n<nav"), 1U);
}

TEST_F(AlbumPickerTest, LeavesNoPageOfTheOldSet) {
    AddOldSet();
    files.AddFile(std::string(Folder) + R"(\notes\mine.txt)");
    AddAlbums(1);
    Build();
    EXPECT_THAT(Names(Folder),
                ElementsAre("AlbumPicker.css", "AlbumPicker0.asp", "AlbumPicker1.asp"));
    EXPECT_THAT(Names(Base), ElementsAre("albumcovers\\", "AlbumPicker\\"));
}

TEST_F(AlbumPickerTest, MakesFoldersThatAreMissing) {
    run.settings.coverPath = "/Music/web/covers/";
    Build();
    EXPECT_TRUE(files.FileExists(R"(C:\HomeSeer\HTML\Music\web\AlbumPicker\AlbumPicker0.asp)"));
    EXPECT_TRUE(files.FolderExists(R"(C:\HomeSeer\HTML\Music\web\covers)"));
}

TEST_F(AlbumPickerTest, MakesTheSameBytesAgain) {
    AddAlbums(3);
    Build();
    const std::string index = Page(0), page = Page(1);
    Build();
    EXPECT_EQ(Page(0), index);
    EXPECT_EQ(Page(1), page);
}

TEST_F(AlbumPickerTest, KeepsTheOldPagesWhenASizeIsNone) {
    run.settings.ImagesHigh = 0;
    BuildExpectingOldSetAndLog(
        "Quillon: BuildcdjPages  Line 4 Invalid procedure call or argument: ImagesHigh=0");
    EXPECT_EQ(run.form.aError, "BuildcdjPages ");
}

TEST_F(AlbumPickerTest, KeepsTheOldPagesWhenASizeIsNegative) {
    run.settings.ImagesWide = -5;
    BuildExpectingOldSetAndLog(
        "Quillon: BuildcdjPages  Line 4 Invalid procedure call or argument: ImagesWide=-5");
}

TEST_F(AlbumPickerTest, KeepsTheOldPagesWhenSizesOverflow) {
    run.settings.ImagesWide = 1000;
    run.settings.ImagesHigh = 1000;
    BuildExpectingOldSetAndLog("Quillon: BuildcdjPages  Line 4 Overflow: 1000000");
}

TEST_F(AlbumPickerTest, KeepsTheOldPagesWhenTheDatabaseCannotBeOpened) {
    databases.refuses = true;
    BuildExpectingOldSetAndLog("Quillon: BuildcdjPages  Line 2 Permission denied: database");
}

TEST_F(AlbumPickerTest, KeepsTheOldPagesWhenAlbumsCannotBeRead) {
    databases.refusedStatements = {"INNER JOIN"};
    BuildExpectingOldSetAndLog("Quillon: BuildcdjPages  Line 2 refused");
}

TEST_F(AlbumPickerTest, KeepsTheOldPagesWhenAlbumsCannotBeCounted) {
    databases.refusedStatements = {"count(*)"};
    BuildExpectingOldSetAndLog("Quillon: BuildcdjPages  Line 2 refused");
}

TEST_F(AlbumPickerTest, KeepsTheOldPagesWhenThereIsNoFolderForCovers) {
    world.calls.Refuse(R"(CreateFolder C:\HomeSeer\HTML\Quillon\albumcovers)",
                       FailureNumber::PermissionDenied, "albumcovers");
    BuildExpectingOldSetAndLog("Quillon: BuildcdjPages  Line 3 Permission denied: albumcovers");
}

TEST_F(AlbumPickerTest, KeepsTheOldPagesWhenAPageCannotBeWritten) {
    AddAlbums(16);
    world.calls.Refuse(R"(CreateText C:\HomeSeer\HTML\Quillon\AlbumPicker.new\AlbumPicker2.asp)",
                       FailureNumber::DiskFull, "AlbumPicker2.asp");
    BuildExpectingOldSetAndLog("Quillon: BuildcdjPages  Line 5 Disk full: AlbumPicker2.asp");
}

TEST_F(AlbumPickerTest, KeepsTheOldPagesWhileTheWebServerHoldsOneOpen) {
    world.calls.Refuse("MoveFolder " + std::string(Folder) + " -> " + Folder + ".old",
                       FailureNumber::PermissionDenied, Folder);
    BuildExpectingOldSetAndLog(
        "Quillon: BuildAlbumPicker - Album Picker File may be open Line 2 Permission denied: " +
        std::string(Folder));
    EXPECT_EQ(run.form.aError, "BuildAlbumPicker - Album Picker File may be open");
}

TEST_F(AlbumPickerTest, PutsTheOldPagesBackWhenTheNewOnesCannotTakeTheirPlace) {
    world.calls.Refuse("MoveFolder " + std::string(Folder) + ".new -> " + Folder,
                       FailureNumber::PermissionDenied, Folder);
    BuildExpectingOldSetAndLog(
        "Quillon: BuildAlbumPicker - Album Picker File may be open Line 2 Permission denied: " +
        std::string(Folder));
}

TEST_F(AlbumPickerTest, TellsThatTheFolderForPagesCannotBeMade) {
    world.calls.Refuse("CreateFolder " + std::string(Folder) + ".new",
                       FailureNumber::PermissionDenied, "AlbumPicker.new");
    BuildExpectingOldSetAndLog(
        "Quillon: BuildAlbumPicker - Album Picker File may be open Line 2 "
        "Permission denied: AlbumPicker.new");
    EXPECT_THAT(databases.opened, IsEmpty());
}

TEST_F(AlbumPickerTest, HasTheNewPagesEvenWhenTheOldOnesCannotBeDeleted) {
    AddOldSet();
    world.calls.Refuse("DeleteFolder " + std::string(Folder) + ".old",
                       FailureNumber::PermissionDenied, "AlbumPicker.old");
    Build();
    EXPECT_THAT(log, ElementsAre("Quillon: BuildAlbumPicker - Album Picker File may be open Line 2 "
                                 "Permission denied: AlbumPicker.old"));
    EXPECT_THAT(Names(Folder), ElementsAre("AlbumPicker.css", "AlbumPicker0.asp"));
}

TEST_F(AlbumPickerTest, RefusesACoverPathThatWindowsCannotHold) {
    AddAlbums(1);
    run.settings.coverPath = "/../secret/";
    world.calls.Refuse(R"(CreateFolder C:\HomeSeer\HTML\..)", FailureNumber::BadFileName, "..");
    Build();
    EXPECT_THAT(log, ElementsAre(StartsWith("Quillon: BuildAlbumPicker - Album Picker File may be "
                                            "open Line 2 Bad file name or number")));
}

class AbortedPickerTest : public AlbumPickerTest {
  protected:
    void BuildAbortedAt(const std::string& item) {
        AddOldSet();
        world.window.PressAbortWhen(
            [item](const FormState& state) { return state.aItem.starts_with(item); });
        Build();
        ExpectOldSet();
        EXPECT_THAT(log, IsEmpty());
        EXPECT_TRUE(run.AbortRequested);
    }
};

TEST_F(AbortedPickerTest, DoesNothingWhenStoppedAtTheStart) {
    BuildAbortedAt("1.");
    EXPECT_THAT(databases.opened, IsEmpty());
    EXPECT_THAT(world.calls.Of({"CreateFolder", "MoveFolder", "DeleteFolder"}), IsEmpty());
}

TEST_F(AbortedPickerTest, CopiesNoCoverWhenStoppedBeforeThem) {
    AddAlbums(1);
    BuildAbortedAt("2.");
    EXPECT_THAT(world.calls.Of({"CopyFile"}), IsEmpty());
}

TEST_F(AbortedPickerTest, StopsBetweenAlbums) {
    AddAlbums(20);
    BuildAbortedAt("3. On Page 2, Artist Artist 0017");
    EXPECT_THAT(Items().back(), "3. On Page 2, Artist Artist 0017");
}

TEST_F(AbortedPickerTest, PublishesNothingWhenStoppedAtTheVeryLastAlbum) {
    AddAlbums(2);
    BuildAbortedAt("3. On Page 1, Artist Artist 0002");
}

class KilledPickerTest : public AlbumPickerTest {};

TEST_F(KilledPickerTest, ABuildThatNeverCameToItsEndIsClearedAway) {
    files.AddFile(std::string(Folder) + R"(.new\AlbumPicker7.asp)", "half a set");
    AddOldSet();
    Build();
    EXPECT_THAT(Names(Base), ElementsAre("albumcovers\\", "AlbumPicker\\"));
    EXPECT_FALSE(HasPage(7));
}

TEST_F(KilledPickerTest, TheSetThatWasPutAsideComesBackEvenIfTheNextBuildFails) {
    files.AddFile(std::string(Folder) + R"(.old\AlbumPicker0.asp)", OldPage);
    files.AddFile(std::string(Folder) + R"(.old\AlbumPicker99.asp)", OldPage);
    files.AddFile(std::string(Folder) + R"(.new\AlbumPicker0.asp)", "a new page");
    databases.refuses = true;
    Build();
    ExpectOldSet();
}

TEST_F(KilledPickerTest, ASetThatWasReplacedButNotDeletedIsClearedAway) {
    files.AddFile(std::string(Folder) + R"(.old\AlbumPicker0.asp)", "older");
    AddOldSet();
    databases.refuses = true;
    Build();
    ExpectOldSet();
}

TEST_F(PickerFixture, TellsHowManyCoversAndThenHowManyAlbumsAreDone) {
    AddAlbum({.cdjid = "A", .artist = "Ann", .title = "One", .image = R"(D:\Covers\a.jpg)"});
    AddAlbum({.cdjid = "B", .artist = "Bob", .title = "Two", .image = R"(D:\Covers\b.jpg)"});
    AddAlbum({.cdjid = "C", .artist = "Cid", .title = "Three"});
    files.AddFile(R"(D:\Covers\a.jpg)");
    files.AddFile(R"(D:\Covers\b.jpg)");
    fakes::ProgressWatch watch(world.window);
    Build();
    watch.Note(run.form.progress);
    EXPECT_EQ(watch.Seen(), "- [0-50%] - 0/2 1/2 [50-100%] 0/3 1/3 2/3 [0-100%] 1000/1000");
}

}  // namespace
}  // namespace quillon
