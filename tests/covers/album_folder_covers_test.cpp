// Images in album folders, and failures on the way to them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/covers/covers_fixture.h"

namespace quillon {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(RefreshAlbumCoversTest, AddsCoversOfAlbumFoldersOnlyWhereTheHostAsksForIt) {
    AddAlbum("Ann", "First");
    library.files.AddFile(R"(D:\Music\Ann\First\Ann - First.jpg)");
    Refresh();
    EXPECT_THAT(library.calls.Made(), Contains("GetINISetting Covers ScanLibrary host.ini"));
    EXPECT_THAT(Images(), ElementsAre("Null"));
    ScanLibraryTree();
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Music\Ann\First\Ann - First.jpg)"));
}

TEST_F(RefreshAlbumCoversTest, LooksTwoLevelsBelowTheLibraryRoot) {
    ScanLibraryTree();
    AddAlbum("Ann", "First");
    library.files.AddFile(R"(D:\Music\Ann - First.jpg)");
    library.files.AddFile(R"(D:\Music\Ann\Ann - First.jpg)");
    library.files.AddFile(R"(D:\Music\Ann\First\Scans\Ann - First.jpg)");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre("Null"));
}

TEST_F(RefreshAlbumCoversTest, KeepsJpegAndGifOfAlbumFoldersBoth) {
    ScanLibraryTree();
    AddAlbum("Ann", "First", "front.gif");
    AddAlbum("Ann", "Second", "front.jpg");
    library.files.AddFile(R"(D:\Music\Ann\First\front.gif)");
    library.files.AddFile(R"(D:\Music\Ann\First\front.jpg)");
    Refresh();
    EXPECT_THAT(Images(),
                ElementsAre(R"(D:\Music\Ann\First\front.gif)", R"(D:\Music\Ann\First\front.jpg)"));
}

TEST_F(RefreshAlbumCoversTest, LeavesOutAlbumFoldersOfTheReservedName) {
    ScanLibraryTree("spare");
    AddAlbum("Ann", "First");
    library.files.AddFile(R"(D:\Music\Ann\Spare\Ann - First.jpg)");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre("Null"));
    library.files.AddFile(R"(D:\Music\Ann\Sparely\Ann - First.jpg)");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Music\Ann\Sparely\Ann - First.jpg)"));
}

TEST_F(RefreshAlbumCoversTest, PrefersTheCoverFolderToAnAlbumFolder) {
    ScanLibraryTree();
    AddAlbum("Ann", "First", R"(D:\Music\Ann\First\Ann - First.jpg)");
    library.files.AddFile(R"(D:\Music\Ann\First\Ann - First.jpg)");
    AddImage("Ann - First.jpg");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Ann - First.jpg)"));
    EXPECT_THAT(Log(),
                ElementsAre(R"(Quillon: Album Cover Ann - First.jpg is in directory but does )"
                            R"(not match D:\Covers\Ann - First.jpg in Albums database)"));
}

TEST_F(RefreshAlbumCoversTest, ChangesNoAlbumWhereNoImagesAreLookedFor) {
    AddAlbum("Ann", "First", R"(D:\Covers\Ann - First.jpg)");
    for (const char* folder : {"", "\\"}) {
        library.run.settings.AlbumCoverFolder = folder;
        Refresh();
        EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Ann - First.jpg)"));
    }
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(RefreshAlbumCoversTest, ChangesNoAlbumWhileTheCoverFolderIsNotThere) {
    library.run.settings.AlbumCoverFolder = R"(E:\Covers\)";
    AddAlbum("Ann", "First", R"(E:\Covers\Ann - First.jpg)");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(E:\Covers\Ann - First.jpg)"));
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: Refresh Album Covers Error: Line 1 Path not found: )"
                                   R"(E:\Covers\)"));
}

TEST_F(RefreshAlbumCoversTest, ChangesNoAlbumWhenTheCoverFolderCannotBeListed) {
    library.files.unlistable.insert(Folder);
    AddAlbum("Ann", "First", R"(D:\Covers\Ann - First.jpg)");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Ann - First.jpg)"));
    EXPECT_THAT(Log(),
                ElementsAre(R"(Quillon: Refresh Album Covers Error: Line 1 Permission denied: )"
                            R"(D:\Covers\)"));
    EXPECT_EQ(library.window.last.aError, "Refresh Album Covers Error:");
}

TEST_F(RefreshAlbumCoversTest, ChangesNoAlbumWhenAnAlbumFolderCannotBeListed) {
    ScanLibraryTree();
    library.files.AddFolder(R"(D:\Music\Ann\First)");
    library.files.unlistable.insert(R"(D:\Music\Ann\First)");
    AddAlbum("Ann", "First", R"(D:\Music\Ann\First\front.jpg)");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Music\Ann\First\front.jpg)"));
    EXPECT_EQ(Log().size(), 1U);
}

TEST_F(RefreshAlbumCoversTest, ChangesNoAlbumWhenTheLibraryToBeScannedIsNotThere) {
    ScanLibraryTree();
    library.run.settings.LibraryRoot = R"(E:\Music)";
    AddAlbum("Ann", "First", R"(E:\Music\Ann\First\front.jpg)");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(E:\Music\Ann\First\front.jpg)"));
    EXPECT_THAT(Log(), ElementsAre(R"(Quillon: Refresh Album Covers Error: Line 1 Path not found: )"
                                   R"(E:\Music)"));
}

TEST_F(RefreshAlbumCoversTest, StopsBeforeThePhaseThatAbortIsPressedIn) {
    AddAlbum("Ann", "First", R"(D:\Covers\gone.jpg)");
    AddAlbum("Bob", "Second");
    AddImage("Bob - Second.jpg");
    const auto pressIn = [this](const std::string& item) {
        library.window.abortPressed = library.run.AbortRequested = false;
        library.window.PressAbortWhen(
            [item](const FormState& state) { return state.aItem == item; });
        Refresh();
    };
    pressIn("1. Scan Albums from Folder");
    EXPECT_THAT(library.calls.Of({"FilesIn"}), IsEmpty());
    pressIn("2. Compare Albums with Database");
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\gone.jpg)", "Null"));
    pressIn("3. Add New Covers to Database");
    EXPECT_THAT(Images(), ElementsAre("", "Null"));
}

TEST_F(RefreshAlbumCoversTest, StopsBetweenCoverFolderAndLibrary) {
    ScanLibraryTree();
    AddAlbum("Ann", "First", R"(D:\Covers\gone.jpg)");
    library.files.AddFile(R"(D:\Music\Ann\First\front.jpg)");
    int calls = 0;
    library.window.PressAbortWhen([&calls](const FormState&) { return ++calls == 3; });
    Refresh();
    EXPECT_THAT(library.calls.Of({"FilesIn", "SubFolders"}), ElementsAre(R"(FilesIn D:\Covers\)"));
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\gone.jpg)"));
}

TEST_F(RefreshAlbumCoversTest, EndsAtAFailureAndKeepsWhatIsSaved) {
    for (const char* artist : {"Ann", "Bob", "Cay"}) {
        AddAlbum(artist, "First");
        AddImage(std::string(artist) + " - First.jpg");
    }
    library.Database().RefuseValue("ImageFile", R"(D:\Covers\Bob - First.jpg)");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Ann - First.jpg)", "Null", "Null"));
    EXPECT_THAT(Log(), ElementsAre("Quillon: Album Cover Ann - First.jpg added to Albums database",
                                   "Quillon: Refresh Album Covers Error: Line 3 refused "
                                   R"((D:\Covers\Bob - First.jpg))"));
}

TEST_F(RefreshAlbumCoversTest, LeavesNewCoversAloneAfterAFailureAmongTheAlbums) {
    AddAlbum("Ann", "First", R"(D:\Covers\gone.jpg)");
    AddAlbum("Bob", "First");
    AddImage("Bob - First.jpg");
    library.Database().RefuseValue("ImageFile", "");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\gone.jpg)", "Null"));
    EXPECT_THAT(Log(), ElementsAre("Quillon: Refresh Album Covers Error: Line 2 refused "
                                   R"((D:\Covers\gone.jpg))"));
}

TEST_F(RefreshAlbumCoversTest, LogsATableThatCannotBeOpened) {
    library.Database().Refuse("Scan Albums");
    Refresh();
    EXPECT_THAT(Log(), ElementsAre("Quillon: Refresh Album Covers Error: Line 1 refused"));
}

}  // namespace
}  // namespace quillon
