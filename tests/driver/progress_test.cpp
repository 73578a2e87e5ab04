#include <gtest/gtest.h>
#include <string>

#include "driver/procedures.h"
#include "tests/support/progress_watch.h"
#include "tests/support/test_library.h"

namespace quillon {
namespace {

/// Three artists with an album of two songs each, which the database knows already.
class Progress : public ::testing::Test {
  protected:
    Progress() {
        library.run.settings.PlayListPath = R"(D:\Lists\)";
        library.run.settings.PlayListPath2 = R"(D:\M3u\)";
        library.run.settings.AlbumCoverFolder = R"(D:\Covers\)";
        for (const char* const folder : {R"(D:\Lists)", R"(D:\M3u)", R"(D:\Covers)"})
            library.files.AddFolder(folder);
        for (const std::string artist : {"Ann", "Bob", "Cid"}) {
            for (const char* const song : {"One", "Two"}) {
                library.AddFile(artist + "\\Album\\" + artist + " - " + song + ".mp3");
            }
        }
        library.Reconcile();
        library.Execute(
            "UPDATE Tracks INNER JOIN Albums ON Tracks.CDJID = Albums.CDJID SET "
            "Tracks.Artist = Albums.Artist");
    }

    /// What a person sees of a phase, and where it stands at the end.
    std::string Of(ProcedureName work) {
        library.run.form.progress = {};  // as the driver does
        fakes::ProgressWatch watch(library.window);
        (AvailableProcedures().*work)(library.run);
        watch.Note(library.run.form.progress);
        library.window.onEvents = {};
        EXPECT_FALSE(watch.WentBack()) << watch.Seen();
        return watch.Seen();
    }

    void AddPlaylist(const std::string& name) {
        const std::string cdjid = library.Rows("SELECT CDJID FROM Albums").front();
        library.files.AddFile(R"(D:\Lists\)" + name, "Header\r\n" + cdjid + " 0\r\n");
    }
    void AddDifference(const std::string& artist, const std::string& song) {
        library.Execute(
            "INSERT INTO SpinnerID3Differences (Artist, Album, Track, Field, ID3Value) "
            "VALUES ('" +
            artist + "', 'Album', '" + song +
            "', 'Comment', "
            "'Length=185')");
    }

    support::TestLibrary library;
};

TEST_F(Progress, OfTheFolderWalkIsInArtists) {
    EXPECT_EQ(Of(&Procedures::RefreshDatabase), "0/3 1/3 2/3 1000/1000");
}

TEST_F(Progress, OfTheFlatLayoutIsInFilesAndThenInAlbums) {
    library.AddFile("Ann_One.mp3");
    library.AddFile("Bob_One.mp3");
    library.run.settings.FlatStructure = true;
    EXPECT_EQ(Of(&Procedures::RefreshDatabase), "1000/1000");
}

TEST_F(Progress, OfLibraryFoldersIsTheShareOfTheirArtists) {
    library.run.LibraryFolders.push_back({R"(D:\Music\Ann)", "Ann"});
    EXPECT_EQ(Of(&Procedures::RefreshDatabase),
              "[0-75%] 0/3 1/3 2/3 [75-100%] 0/1 [0-100%] 1000/1000");
}

TEST_F(Progress, StopsWhereAnAbortStopsThePhase) {
    library.window.PressAbortWhen(
        [](const FormState& state) { return state.aItem.ends_with("Bob"); });
    AvailableProcedures().RefreshDatabase(library.run);
    EXPECT_EQ(library.run.form.progress.done, 1U);
    EXPECT_EQ(library.run.form.progress.total, 3U);
}

TEST_F(Progress, CountsLeftOutArtistsAsDone) {
    library.run.ExcludeEmpty = false;
    library.run.ExcludeList = {"Cid"};
    EXPECT_EQ(Of(&Procedures::RefreshDatabase), "0/3 1/3 2/3 1000/1000");
}

TEST_F(Progress, OfTheVerificationIsInArtists) {
    EXPECT_EQ(Of(&Procedures::VerifyID3Tags), "0/3 1/3 2/3 1000/1000");
}

TEST_F(Progress, OfTheRemovalOfDuplicatesIsUnknown) {
    EXPECT_EQ(Of(&Procedures::RemoveDuplicates), "-");
}

TEST_F(Progress, OfTheDownloadTableIsInSongsAndInArtists) {
    EXPECT_EQ(Of(&Procedures::PopulateSpinnerTracks), "- 0/6 1/6 2/6 3/6 4/6 5/6 6/6");
    EXPECT_EQ(Of(&Procedures::PopulateSpinnerTracks), "- 0/6 1/6 2/6 3/6 4/6 5/6 6/6")
        << "songs that are there already are done, too";
    EXPECT_EQ(Of(&Procedures::PopulateSpinnerArtist), "- 0/3 1/3 2/3 3/3");
}

TEST_F(Progress, OfThePlaylistsIsInFiles) {
    AddPlaylist("A.pla");
    AddPlaylist("B.pla");
    EXPECT_EQ(Of(&Procedures::CapturePlaylists), "- 0/2 1/2 2/2");
    EXPECT_EQ(Of(&Procedures::RefreshPlaylist), "- 0/2 1/2 2/2");
    EXPECT_EQ(Of(&Procedures::ConvertPlaToM3u), "0/2 1/2 2/2");
}

TEST_F(Progress, WithoutPlaylistsIsUnknown) {
    EXPECT_EQ(Of(&Procedures::CapturePlaylists), "-");
    EXPECT_EQ(Of(&Procedures::RefreshPlaylist), "-");
    EXPECT_EQ(Of(&Procedures::ConvertPlaToM3u), "-");
    EXPECT_EQ(Of(&Procedures::ConvertM3uToPla), "-");
}

TEST_F(Progress, OfNewPlaylistsIsInArtistsAndThenInLists) {
    AvailableProcedures().PopulateSpinnerTracks(library.run);
    library.run.playlistEntries = {};
    EXPECT_EQ(Of(&Procedures::CreateNewPlaylists),
              "- [0-25%] 0/3 1/3 2/3 [25-50%] - [50-100%] - 0/3 1/3 2/3 [0-100%] 1000/1000");
    library.run.settings.PlaylistByAlbumOption = true;
    library.run.playlistEntries = {};
    EXPECT_EQ(Of(&Procedures::CreateNewPlaylists),
              "- [0-25%] 0/3 1/3 2/3 [25-50%] - [50-100%] - 0/3 1/3 2/3 [0-100%] 1000/1000");
}

TEST_F(Progress, OfTheCoversIsInAlbumsAndThenInImages) {
    library.files.AddFile(R"(D:\Covers\Ann - Album.jpg)");
    library.files.AddFile(R"(D:\Covers\Nobody - Album.jpg)");
    EXPECT_EQ(Of(&Procedures::RefreshAlbumCovers),
              "- [0-40%] - - [40-100%] - [40-70%] 0/3 1/3 2/3 [40-100%] 500/1000 [70-100%] 0/2 1/2 "
              "[0-100%] 1000/1000");
}

TEST_F(Progress, OfCoversInTheLibraryIsInArtistsFirst) {
    library.host.Set("ScanLibrary", "1");
    EXPECT_EQ(Of(&Procedures::RefreshAlbumCovers),
              "- [0-40%] - - 0/3 1/3 2/3 [40-100%] - [40-70%] 0/3 1/3 2/3 [40-100%] 500/1000 "
              "[0-100%] 1000/1000");
}

TEST_F(Progress, OfTheDatabaseUpdateIsInDifferences) {
    AddDifference("Ann", "One");
    AddDifference("Nobody", "One");
    EXPECT_EQ(Of(&Procedures::UpdateDatabaseFromID3), "0/2 1/2 2/2");
}

TEST_F(Progress, OfWritingTagsIsInSongs) {
    AddDifference("Ann", "One");
    AddDifference("Ann", "Two");
    AddDifference("Bob", "Two");
    AddDifference("Nobody", "Two");
    EXPECT_EQ(Of(&Procedures::WriteID3), "0/4 1/4 2/4 3/4 4/4");
}

TEST_F(Progress, OfAddingFilesIsInFilesAndFoldersOfTheSource) {
    library.run.settings.FromFilesPath = R"(D:\New)";
    for (const char* const file :
         {"a - x.mp3", "b - y.mp3", R"(Dora\Album\z - a.mp3)", R"(Eve\Album\z - b.mp3)"})
        library.files.AddFile(R"(D:\New\)" + std::string(file), support::UntaggedSoundFile());
    EXPECT_EQ(Of(&Procedures::AddFilesToLibrary),
              "[0-20%] 0/2 1/2 [20-60%] 0/2 1/2 [60-100%] 0/2 1/2 [0-100%] 1000/1000");
}

TEST_F(Progress, OfTheRemoteReferenceIsInPathsOfEachKind) {
    library.run.settings.LibraryRoot = R"(M:\Music\)";
    library.Execute("UPDATE Albums SET ImageFile = 'X:\\Covers\\a.jpg' WHERE Artist <> 'Bob'");
    EXPECT_EQ(
        Of(&Procedures::MakeRemote),
        "[0-25%] - 0/2 1/2 [25-50%] - 0/6 1/6 2/6 3/6 4/6 5/6 [50-75%] - [75-100%] - [0-100%] "
        "1000/1000");
}

TEST_F(Progress, OfTheReconciliationFileIsUnknown) {
    EXPECT_EQ(Of(&Procedures::OutputReconcileTable), "-");
}

}  // namespace
}  // namespace quillon
