#include <gmock/gmock.h>

#include "tests/reconcile/adding_fixture.h"

namespace quillon {
namespace {

using ::testing::AllOf;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

class AddingFailsTest : public AddingTest {
  protected:
    /// An album without a cover and with one track is there already; a file that joins it waits,
    /// with an image beside it, and a file behind it in the order of names that makes an album.
    void PrepareTwo() {
        library.AddAlbumRow("252E671073EC0001", "Artist", "Album", 1);
        library.files.AddFolder(R"(D:\Music\Artist)");
        AddNew("1.mp3", TagOf("One", "Artist", "Album"));
        AddNew("2.mp3", TagOf("Two", "Another", "Record"));
        AddImage("front.jpg");
    }

    /// What the second file of PrepareTwo makes, and nothing of the first.
    void ExpectOnlyTheSecond() {
        EXPECT_THAT(library.Rows("SELECT Artist, Title, Tracks, ImageFile FROM Albums ORDER BY ID"),
                    ElementsAre("Artist|Album|1|Null",
                                R"(Another|Record|1|D:\Covers\Another - Record.jpg)"));
        EXPECT_THAT(library.Tracks(), ElementsAre(R"(Another\Record\Two.mp3|Two|1)"));
        EXPECT_THAT(library.Rows("SELECT Song FROM Spinner"), ElementsAre("Two"));
        EXPECT_THAT(library.Rows("SELECT Artist FROM SpinnerArtist"), ElementsAre("Another"));
        EXPECT_TRUE(library.files.FolderExists(R"(D:\Music\Artist)"));
        EXPECT_FALSE(library.files.FolderExists(R"(D:\Music\Artist\Album)"));
        EXPECT_FALSE(library.files.FileExists(R"(D:\Covers\Artist - Album.jpg)"));
        EXPECT_EQ(library.run.counts.tracksAdded, 1U);
        EXPECT_EQ(library.run.counts.albumsAdded, 1U);
        EXPECT_EQ(library.Faults(), "");
    }

    /// Adds a file whose tag has these names; it must leave no trace but one line of the log.
    void ExpectRefused(const support::RawTag& tag) {
        SCOPED_TRACE(tag.artist + "|" + tag.album + "|" + tag.song);
        AddNew("1 - x.mp3", tag);
        AddImage("front.jpg");
        const auto rows = AllRows();
        const auto everything = library.files.Everything();
        Log().clear();
        Add();
        EXPECT_EQ(AllRows(), rows);
        EXPECT_EQ(library.files.Everything(), everything);
        EXPECT_THAT(Log(), ElementsAre(AllOf(
                               StartsWith("Quillon: AddFile Line 1 Bad file name or number: "),
                               HasSubstr(R"( of D:\New\1 - x.mp3)"))));
    }
};

TEST_F(AddingFailsTest, WithoutASourcePath) {
    library.run.settings.FromFilesPath = "";
    Add();
    EXPECT_THAT(Log(), ElementsAre("Quillon: Source path for files to be added is null"));
}

TEST_F(AddingFailsTest, WhenTheSourceIsMissing) {
    library.run.settings.FromFilesPath = R"(D:\Elsewhere\)";
    Add();
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: Source path D:\Elsewhere\ does not exist)"));
    EXPECT_EQ(library.Database().Count("OpenTable"), 0U);
}

/// Copies below a mount point vanish as soon as the drive is there.
TEST_F(AddingFailsTest, WhenTheLibraryIsOutOfSight) {
    library.AddAlbumRow("252E671073EC0001", "A", "B", 1);
    library.AddTrackRow("252E671073EC0001", 1, R"(D:\Music\A\B\x.mp3)");
    library.files.AddFolder(R"(D:\Music\lost+found)");
    AddNew("a - x.mp3");
    const auto rows = AllRows();
    Add();
    EXPECT_THAT(Log(), ElementsAre(StartsWith("Quillon: AddFilesToLibrary, Nothing is added: "
                                              R"(D:\Music holds no music at all, and the database )"
                                              "has tracks there. See to the drives")));
    EXPECT_EQ(library.run.counts.errors, 1U);
    EXPECT_EQ(AllRows(), rows);
    EXPECT_FALSE(library.files.FolderExists(R"(D:\Music\Unknown)"));
    library.run.removals.allAllowed = true;
    Add();
    EXPECT_TRUE(library.files.FolderExists(R"(D:\Music\Unknown)"));
}

TEST_F(AddingFailsTest, WhenTheLibraryIsMissing) {
    library.run.settings.LibraryRoot = R"(D:\Unmounted)";
    AddNew("a - x.mp3");
    Add();
    EXPECT_THAT(Log(), ElementsAre("Quillon: AddFilesToLibrary, No folder at library root "
                                   R"(D:\Unmounted)"));
    EXPECT_THAT(AllRows(), IsEmpty());
}

TEST_F(AddingFailsTest, WhenTheSourceLiesInTheLibrary) {
    library.AddFile(R"(New\a - x.mp3)");
    for (const char* const source :
         {R"(D:\Music)", R"(D:\Music\)", R"(d:\MUSIC)", R"(D:\Music\new)"}) {
        Log().clear();
        library.run.settings.FromFilesPath = source;
        Add();
        EXPECT_THAT(
            Log(),
            ElementsAre("Quillon: AddFilesToLibrary, Source path " + std::string(source) +
                        R"( lies in the library D:\Music, which would be copied into itself)"));
    }
    EXPECT_THAT(AllRows(), IsEmpty());
    EXPECT_THAT(library.calls.Of({"CopyFile", "CreateFolder"}), IsEmpty());
}

TEST_F(AddingFailsTest, WhenTheLibraryLiesInTheSource) {
    library.files.AddFolder(R"(D:\New\Music)");
    library.run.settings.LibraryRoot = R"(D:\new\music\)";
    AddNew("a - x.mp3");
    Add();
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: AddFilesToLibrary, The library D:\new\music\ lies )"
                                   R"(in the source path D:\New and would be copied into itself)"));
    EXPECT_THAT(AllRows(), IsEmpty());
}

TEST_F(AddingFailsTest, NotForAFolderWhoseNameBeginsLikeTheLibrarys) {
    library.run.settings.FromFilesPath = R"(D:\Music to come)";
    library.files.AddFile(R"(D:\Music to come\a - x.mp3)", "x");
    Add();
    EXPECT_THAT(library.Tracks(), SizeIs(1));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(AddingFailsTest, ForNamesThatCannotBeOneFileName) {
    for (const char* const name :
         {"AC/DC", "..", ".", "a\\b", "C:x", "what?", "a*", "<a>", "a\x07", "a\"b", R"(..\..\x)"}) {
        ExpectRefused(TagOf("Song", name, "Album"));
        ExpectRefused(TagOf("Song", "Artist", name));
        ExpectRefused(TagOf(name, "Artist", "Album"));
    }
    ExpectRefused(TagOf("Song", "R.E.M.", "Album"));
    ExpectRefused(TagOf("Song", "Artist", "Album..."));
}

TEST_F(AddingFailsTest, ForAFileThatHasNoTitle) {
    AddNew("Artist -.mp3");
    Add();
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: AddFile Line 1 Bad file name or number: title "" )"
                                   R"(of D:\New\Artist -.mp3)"));
    EXPECT_THAT(AllRows(), IsEmpty());
}

/// The genre's place in the record holds something else then; bare in a statement, it would be SQL.
TEST_F(AddingFailsTest, ForATagWhoseGenreIsNoNumber) {
    AddNew("1.mp3", TagOf("a|b", "Artist", "Album"));
    AddNew("2.mp3", TagOf("a|b|c|d|e|f|g|17 OR 1=1", "Artist", "Album"));
    Add();
    EXPECT_THAT(Log(), ElementsAre("Quillon: AddFile Line 1 Syntax error (missing operator) in "
                                   R"(query expression: GenreID= (D:\New\1.mp3))",
                                   "Quillon: AddFile Line 1 Syntax error (missing operator) in "
                                   R"(query expression: GenreID=17 OR 1=1 (D:\New\2.mp3))"));
    EXPECT_THAT(AllRows(), IsEmpty());
}

TEST_F(AddingFailsTest, ForAFileAloneThatCannotBeCopied) {
    PrepareTwo();
    library.calls.Refuse(R"(CopyFile D:\New\1.mp3 -> D:\Music\Artist\Album\One.mp3)",
                         FailureNumber::DiskFull, R"(D:\Music\Artist\Album\One.mp3)");
    Add();
    EXPECT_THAT(Log(), ElementsAre("Quillon: AddFile Line 3 Disk full: "
                                   R"(D:\Music\Artist\Album\One.mp3 (D:\New\1.mp3))"));
    ExpectOnlyTheSecond();
}

TEST_F(AddingFailsTest, ForAFileAloneWhoseFolderCannotBeMade) {
    PrepareTwo();
    library.calls.Refuse(R"(CreateFolder D:\Music\Artist\Album)", FailureNumber::PermissionDenied,
                         R"(D:\Music\Artist\Album)");
    Add();
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: AddFile Line 3 Permission denied: )"
                                   R"(D:\Music\Artist\Album (D:\New\1.mp3))"));
    ExpectOnlyTheSecond();
}

TEST_F(AddingFailsTest, ForAFileAloneWhoseTrackIsRefused) {
    PrepareTwo();
    library.Database().RefuseValue("Title", "One");
    Add();
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: AddFile Line 6 refused (D:\New\1.mp3))"));
    ExpectOnlyTheSecond();
}

TEST_F(AddingFailsTest, ForAFileAloneWhoseDownloadRowIsRefused) {
    PrepareTwo();
    library.Database().RefuseValue("Song", "One");
    Add();
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: AddFile Line 6 refused (D:\New\1.mp3))"));
    ExpectOnlyTheSecond();
}

TEST_F(AddingFailsTest, ForAnAlbumThatIsRefusedAndItsArtistGoesToo) {
    AddNew("1.mp3", TagOf("One", "Artist", "Album"));
    library.Database().RefuseValue("Title", "Album");
    Add();
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: AddFile Line 4 refused (D:\New\1.mp3))"));
    EXPECT_THAT(AllRows(), IsEmpty());
    EXPECT_FALSE(library.files.FolderExists(R"(D:\Music\Artist)"));
    EXPECT_EQ(library.Faults(), "");
}

/// The album that was taken back is not the one of the next file.
TEST_F(AddingFailsTest, ForTheFirstFileOfAnAlbumAndNotForTheSecond) {
    AddNew("1.mp3", TagOf("One", "Artist", "Album"));
    AddNew("2.mp3", TagOf("Two", "Artist", "Album"));
    library.Database().RefuseValue("Song", "One");
    Add();
    EXPECT_THAT(Log(), SizeIs(1));
    EXPECT_THAT(library.Rows("SELECT CDJID, Artist, Title, Tracks FROM Albums"),
                ElementsAre("252E671073EC0001|Artist|Album|1"));
    EXPECT_THAT(library.Rows("SELECT CDJID, Title FROM Tracks"),
                ElementsAre("252E671073EC0001|Two"));
    EXPECT_THAT(library.Rows("SELECT Artist FROM SpinnerArtist"), ElementsAre("Artist"));
    EXPECT_EQ(library.run.counts.albumsAdded, 1U);
}

TEST_F(AddingFailsTest, WhenANameDoesNotFitItsField) {
    library.run.settings.LibraryRoot = R"(D:\Music\)" + std::string(120, 'r');
    library.files.AddFolder(library.run.settings.LibraryRoot);
    const std::string longName(140, 'n');
    AddNew(longName + R"(\a - x.mp3)");
    Add();
    EXPECT_THAT(Log(), AllOf(SizeIs(2), Each(HasSubstr("The field 'SoundFile' is too small"))));
    EXPECT_THAT(AllRows(), IsEmpty());
    EXPECT_FALSE(library.files.FolderExists(library.run.settings.LibraryRoot + '\\' + longName));
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(AddingFailsTest, ForAnAlbumThatHoldsAllTheFilesItsCountCanTell) {
    library.AddAlbumRow("252E671073EC0001", "Artist", "Album", 32767);
    AddNew("1.mp3", TagOf("One", "Artist", "Album"));
    Add();
    EXPECT_THAT(Log(), ElementsAre(StartsWith("Quillon: AddFile Line 6 ")));
    EXPECT_THAT(library.Albums(), ElementsAre("Artist|Album|32767"));
    EXPECT_FALSE(library.files.FolderExists(R"(D:\Music\Artist)"));
}

TEST_F(AddingFailsTest, ForAnAlbumThatGetsNoIdentifier) {
    AddNew("1.mp3", TagOf("One", "Artist", "Album"));
    library.Database().Refuse("Scan Albums");
    Add();
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: GetNextCDJID Error: Line 0 refused (Artist\Album))",
                                   "Quillon: AddFile Line 4 No identifier for album Album "
                                   R"((D:\New\1.mp3))"));
    EXPECT_THAT(AllRows(), IsEmpty());
}

TEST_F(AddingFailsTest, SayingSoWhenSomethingCannotBeTakenBack) {
    AddNew("1.mp3", TagOf("One", "Artist", "Album"));
    library.Database().RefuseValue("Song", "One");
    library.calls.Refuse(R"(Discard D:\Music\Artist\Album\One.mp3)",
                         FailureNumber::PermissionDenied, R"(D:\Music\Artist\Album\One.mp3)");
    Add();
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: AddFile Line 6 refused (D:\New\1.mp3))",
                                   R"(Quillon: AddFile Line 7 Permission denied: )"
                                   R"(D:\Music\Artist\Album\One.mp3 (D:\New\1.mp3))",
                                   StartsWith("Quillon: AddFile Line 7 "),
                                   StartsWith("Quillon: AddFile Line 7 ")));
    EXPECT_THAT(AllRows(), IsEmpty());
}

TEST_F(AddingFailsTest, ForAFolderThatCannotBeListedAlone) {
    AddNew(R"(A\a - x.mp3)");
    AddNew(R"(B\Closed\a - y.mp3)");
    AddNew(R"(C\a - z.mp3)");
    library.files.unlistable.insert(R"(D:\New\B\Closed)");
    Add();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\Unknown\x.mp3|x|1)", R"(C\Unknown\z.mp3|z|1)",
                                              R"(Unknown\A\x.mp3|x|1)", R"(Unknown\C\z.mp3|z|1)"));
    // One line a visit.
    EXPECT_THAT(Log(), AllOf(SizeIs(2), Each(R"(Quillon: AddFolder Line 1 Permission denied: )"
                                             R"(D:\New\B\Closed)")));
}

TEST_F(AddingFailsTest, WhenATableIsMissing) {
    library.Database().Refuse("SELECT ID FROM Spinner WHERE ID=0");
    AddNew("a - x.mp3");
    Add();
    EXPECT_THAT(Log(), ElementsAre("Quillon: AddFilesToLibrary Line 3 refused"));
    EXPECT_THAT(library.calls.Of({"CopyFile", "CreateFolder"}), IsEmpty());
}

TEST_F(AddingFailsTest, WhenALookUpIsRefusedAndNothingIsWritten) {
    for (const char* const statement :
         {"SELECT CDJID, Tracks FROM Albums", "SELECT ID FROM Tracks WHERE SoundFile",
          "SELECT Genre FROM SpinnerGenre"}) {
        const support::TestLibrary::Files& files = library.files;
        AddNew("1.mp3", TagOf("One", "Artist", "Album"));
        library.ReopenDatabase();
        library.Database().Refuse(statement);
        const auto everything = files.Everything();
        Log().clear();
        Add();
        EXPECT_THAT(Log(), ElementsAre(StartsWith("Quillon: AddFile Line "))) << statement;
        EXPECT_THAT(AllRows(), IsEmpty());
        EXPECT_EQ(files.Everything(), everything);
    }
}

/// Nobody knows whether it belongs to an album until its tag is read.
TEST_F(AddingFailsTest, ForAFileWhoseTagCannotBeRead) {
    PrepareTwo();
    library.calls.Refuse(R"(OpenBinary D:\New\1.mp3)", FailureNumber::PermissionDenied,
                         R"(D:\New\1.mp3)");
    Add();
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: Read ID3 File Error: Line 3 Permission denied: )"
                                   R"(D:\New\1.mp3)",
                                   "Quillon: AddFile Line 1 Not added, since nobody knows without "
                                   R"(its tag where it belongs: D:\New\1.mp3)"));
    ExpectOnlyTheSecond();
}

TEST_F(AddingFailsTest, ForAFileAloneWhoseTargetCannotBeLookedAt) {
    PrepareTwo();
    library.files.AddFolder(R"(D:\Music\Artist\Album)");
    library.files.HideFromView(R"(D:\Music\Artist\Album\One.mp3)");
    Add();
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: AddFile Line 3 Path/File access error: )"
                                   R"(D:\Music\Artist\Album\One.mp3 (D:\New\1.mp3))"));
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Another\Record\Two.mp3|Two|1)"));
}

/// The adapter tells of each entry that it could not look at.
TEST_F(AddingFailsTest, ForNothingButWhatIsOutOfSight) {
    AddNew("1.mp3", TagOf("One", "Artist", "Album"));
    AddNew("2.mp3", TagOf("Two", "Another", "Record"));
    AddNew(R"(Closed\3.mp3)", TagOf("Three", "Another", "Record"));
    library.files.HideFromView(R"(D:\New\1.mp3)");
    library.files.HideFromView(R"(D:\New\Closed)");
    Add();
    EXPECT_THAT(Log(), IsEmpty());
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(Another\Record\Two.mp3|Two|1)"));
}

TEST_F(AddingFailsTest, WhenNobodyCanTellWhetherTheSourceIsThere) {
    AddNew("1.mp3", TagOf("One", "Artist", "Album"));
    library.files.HideFromView(R"(D:\New)");
    Add();
    EXPECT_THAT(Log(), ElementsAre("Quillon: AddFilesToLibrary Line 1 Path/File access error: "
                                   R"(D:\New)"));
    EXPECT_THAT(AllRows(), IsEmpty());
}

}  // namespace
}  // namespace quillon
