#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_library.h"

namespace quillon {
namespace {

using support::RawTag;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

/// What there is cannot be looked at for a while: a link's disk is away, or a disk fails. The
/// adapter tells of each such path; here it only has to be kept.
class OutOfSightTest : public ::testing::Test {
  protected:
    std::vector<std::string> State() {
        std::vector<std::string> state = library.Rows("SELECT * FROM Albums ORDER BY ID");
        for (std::string& row : library.Rows("SELECT * FROM Tracks ORDER BY ID"))
            state.push_back(std::move(row));
        return state;
    }

    /// Numbers that no walk would hand out tell whether they have been left alone.
    void ShuffleNumbers() {
        library.Execute("UPDATE Tracks SET Track = Track + 10");
        library.Execute("UPDATE Albums SET Tracks = Tracks + 10");
    }

    support::TestLibrary library;
};

class TreeOutOfSightTest : public OutOfSightTest {
  protected:
    TreeOutOfSightTest() {
        for (const char* const artist : {"Blue", "Green", "Red"}) {
            for (const char* const album : {"One", "Two"}) {
                for (const char* const song : {"a", "b", "c"})
                    library.AddFile(std::string(artist) + "\\" + album + "\\" + song + ".mp3");
            }
        }
        library.Reconcile();
        ShuffleNumbers();
    }

    /// The rows of one artist's album, or of all of them.
    std::vector<std::string> RowsOf(const std::string& artist, const std::string& album) {
        const std::string ofArtist = " WHERE Artist='" + artist + "'";
        const std::string ofAlbum = album.empty() ? "" : " AND Title='" + album + "'";
        std::vector<std::string> rows =
            library.Rows("SELECT * FROM Albums" + ofArtist + ofAlbum + " ORDER BY ID");
        for (const std::string& cdjid :
             library.Rows("SELECT CDJID FROM Albums" + ofArtist + ofAlbum))
            for (std::string& row :
                 library.Rows("SELECT * FROM Tracks WHERE CDJID='" + cdjid + "' ORDER BY ID"))
                rows.push_back(std::move(row));
        return rows;
    }

    /// Reconciles while something is out of sight; these rows must stay as they are, and the other
    /// albums get their numbers.
    void ExpectKept(const std::string& hidden, const std::string& artist,
                    const std::string& album) {
        const auto before = RowsOf(artist, album);
        ASSERT_THAT(before, ::testing::Not(IsEmpty()));
        library.files.HideFromView(library.Root + hidden);
        library.Reconcile();
        EXPECT_EQ(RowsOf(artist, album), before);
        EXPECT_THAT(library.Rows("SELECT Tracks FROM Albums WHERE Artist='Blue'"),
                    ElementsAre("3", "3"));
        EXPECT_THAT(library.Rows("SELECT ID FROM Tracks"), SizeIs(18));
        EXPECT_THAT(library.host.log, IsEmpty());
        EXPECT_EQ(library.Faults(), "");
    }
};

TEST_F(TreeOutOfSightTest, AnArtistFolderKeepsItsRows) {
    ExpectKept("Red", "Red", "");
}

TEST_F(TreeOutOfSightTest, AnAlbumFolderKeepsItsRows) {
    ExpectKept(R"(Red\Two)", "Red", "Two");
}

TEST_F(TreeOutOfSightTest, ASongKeepsTheRowsOfItsWholeAlbum) {
    ExpectKept(R"(Red\Two\b.mp3)", "Red", "Two");
}

TEST_F(TreeOutOfSightTest, ASongOfAnAlbumWhoseOtherSongsAreGoneKeepsThemForThisRun) {
    library.RemoveFile(R"(Red\Two\a.mp3)");
    ExpectKept(R"(Red\Two\b.mp3)", "Red", "Two");
}

TEST_F(TreeOutOfSightTest, ASongThatTheLibraryDoesNotHaveHoldsUpNothing) {
    library.files.HideFromView(R"(D:\Music\Red\Two\new.mp3)");
    library.AddFile(R"(Red\Two\d.mp3)");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), Contains("Red|Two|4"));
    EXPECT_THAT(library.Rows("SELECT Track FROM Tracks WHERE SoundFile Like '%Red\\Two\\d.mp3'"),
                ElementsAre("4"));
}

TEST_F(TreeOutOfSightTest, WhatIsNoSongHoldsUpNothing) {
    library.files.HideFromView(R"(D:\Music\Red\Two\cover.jpg)");
    library.files.HideFromView(R"(D:\Music\Red\Two\CD2)");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), Contains("Red|Two|3"));
}

TEST_F(TreeOutOfSightTest, LeavesTheRestToBeSwept) {
    library.RemoveFile(R"(Green\One\a.mp3)");
    library.files.HideFromView(R"(D:\Music\Red)");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), Contains("Green|One|2"));
    EXPECT_EQ(library.run.counts.tracksRemoved, 1U);
}

TEST_F(TreeOutOfSightTest, AMemberOfASpreadArtistKeepsTheWholeOfIt) {
    library.files.AddFile(R"(E:\More\RED\Two\d.mp3)");
    library.run.LibraryFolders.push_back({R"(E:\More)", "More"});
    library.Reconcile();
    ShuffleNumbers();
    const auto before = RowsOf("Red", "Two");
    EXPECT_THAT(before, SizeIs(5));
    for (const char* const hidden : {R"(E:\More\RED)", R"(E:\More\RED\Two)"}) {
        library.files.HideFromView(hidden);
        library.Reconcile();
        EXPECT_EQ(RowsOf("Red", "Two"), before) << hidden;
    }
}

TEST_F(TreeOutOfSightTest, ALibraryFolderKeepsTheAlbumsThatLieThereInPart) {
    library.files.AddFile(R"(E:\More\RED\Two\d.mp3)");
    library.run.LibraryFolders.push_back({R"(E:\More)", "More"});
    library.Reconcile();
    ShuffleNumbers();
    const auto before = RowsOf("Red", "Two");
    library.files.unlistable = {R"(E:\More)"};
    library.Reconcile();
    EXPECT_EQ(RowsOf("Red", "Two"), before);
    EXPECT_THAT(library.Albums(), Contains("Red|One|3"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: RefreshDatabaseFolder Line 2 Permission denied: E:\\More"));
}

/// A listed library folder that is away is known before the walk begins.
TEST_F(TreeOutOfSightTest, AListedFolderThatIsAwayKeepsTheAlbumsThatLieThereInPart) {
    library.run.settings.LibraryDepthOption = true;
    library.run.settings.LibraryRoot = R"(D:\Lists)";
    library.files.AddFile(R"(D:\Lists\folders.txt)", "D:\\Music\r\nE:\\More\r\n");
    library.AddTrackRow(library.Rows("SELECT CDJID FROM Albums WHERE Artist='Red' AND "
                                     "Title='Two'")[0],
                        14, R"(E:\More\Red\Two\d.mp3)");
    library.Execute("UPDATE Albums SET Tracks=14 WHERE Artist='Red' AND Title='Two'");
    const auto before = RowsOf("Red", "Two");
    library.Reconcile();
    EXPECT_EQ(RowsOf("Red", "Two"), before);
    EXPECT_THAT(library.host.log,
                ElementsAre(R"(Quillon: RefreshDatabase, No folder at library folder E:\More, )"
                            "1 track below it is kept"));
}

/// Files side by side, of two artists.
class FlatOutOfSightTest : public OutOfSightTest {
  protected:
    FlatOutOfSightTest() {
        library.run.settings.FlatStructure = true;
        for (const char* const name : {"Red_a", "Red_b", "Red_c"})
            library.AddFile(std::string(name) + ".mp3", OfAlbum("One"));
        library.AddFile("Blue_a.mp3", OfAlbum("One"));
        library.AddFile("Blue_b.mp3", OfAlbum("Two"));
        library.Reconcile();
        ShuffleNumbers();
    }

    static RawTag OfAlbum(const std::string& album) {
        RawTag tag;
        tag.album = album;
        return tag;
    }

    std::vector<std::string> AlbumsAndTracksOf(const std::string& artist) {
        std::vector<std::string> rows = library.Rows(
            "SELECT Artist, Title, Tracks FROM Albums WHERE Artist='" + artist + "' ORDER BY ID");
        for (std::string& row :
             library.Rows("SELECT SoundFile, Track, CDJID FROM Tracks WHERE Artist='" + artist +
                          "' ORDER BY ID"))
            rows.push_back(std::move(row));
        return rows;
    }
};

TEST_F(FlatOutOfSightTest, ASongKeepsTheNumbersAndTheCountOfItsAlbum) {
    const auto before = AlbumsAndTracksOf("Red");
    library.files.HideFromView(R"(D:\Music\Red_b.mp3)");
    library.Reconcile();
    EXPECT_EQ(AlbumsAndTracksOf("Red"), before);
    EXPECT_THAT(AlbumsAndTracksOf("Blue"),
                ElementsAre("Blue|One|1", "Blue|Two|1", StartsWith(R"(D:\Music\Blue_a.mp3|1|)"),
                            StartsWith(R"(D:\Music\Blue_b.mp3|1|)")));
    EXPECT_THAT(library.host.log, IsEmpty());
    EXPECT_EQ(library.Faults(), "");
}

TEST_F(FlatOutOfSightTest, TheOnlySongKeepsItsAlbum) {
    const auto before = AlbumsAndTracksOf("Blue");
    library.files.HideFromView(R"(D:\Music\Blue_a.mp3)");
    library.files.HideFromView(R"(D:\Music\Blue_b.mp3)");
    library.Reconcile();
    EXPECT_EQ(AlbumsAndTracksOf("Blue"), before);
    EXPECT_THAT(library.Albums(), Contains("Red|One|3"));
}

TEST_F(FlatOutOfSightTest, WhatIsNoSongOrUnknownHoldsUpNothing) {
    library.files.HideFromView(R"(D:\Music\Red_cover.jpg)");
    library.files.HideFromView(R"(D:\Music\Red_new.mp3)");
    library.files.HideFromView(R"(D:\Music\folder)");
    library.RemoveFile("Blue_b.mp3");
    library.Reconcile();
    EXPECT_THAT(library.Albums(), ElementsAre("Blue|One|1", "Red|One|3"));
}

/// Without its tag it would move to the album "Unknown", and take a number there.
TEST_F(FlatOutOfSightTest, ASongWhoseTagCannotBeReadStaysInItsAlbum) {
    const auto before = AlbumsAndTracksOf("Red");
    library.AddFile("Green_new.mp3", OfAlbum("One"));
    for (const char* const path : {R"(D:\Music\Red_b.mp3)", R"(D:\Music\Green_new.mp3)"}) {
        library.calls.Refuse("OpenBinary " + std::string(path), FailureNumber::PathFileAccess,
                             path);
    }
    library.Reconcile();
    EXPECT_EQ(AlbumsAndTracksOf("Red"), before);
    EXPECT_THAT(library.Albums(), ElementsAre("Blue|One|1", "Blue|Two|1", "Red|One|13"));
    EXPECT_THAT(library.host.log, ElementsAre(HasSubstr(R"(D:\Music\Green_new.mp3)"),
                                              HasSubstr(R"(D:\Music\Red_b.mp3)")));
}

TEST_F(FlatOutOfSightTest, ALibraryFolderKeepsTheAlbumsThatLieThereInPart) {
    library.files.AddFile(R"(E:\More\RED_d.mp3)", support::SoundFile(OfAlbum("ONE")));
    library.run.LibraryFolders.push_back({R"(E:\More)", "More"});
    library.Reconcile();
    ShuffleNumbers();
    const auto before = AlbumsAndTracksOf("Red");
    EXPECT_THAT(before, SizeIs(5));
    library.files.unlistable = {R"(E:\More)"};
    library.Reconcile();
    EXPECT_EQ(AlbumsAndTracksOf("Red"), before);
    EXPECT_THAT(library.Albums(), Contains("Blue|One|1"));
}

}  // namespace
}  // namespace quillon
