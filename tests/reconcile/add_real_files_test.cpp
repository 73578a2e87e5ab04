#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "reconcile/add_files_to_library.h"
#include "tests/outside/child_process.h"
#include "tests/outside/density.h"
#include "tests/outside/file_marks.h"
#include "tests/outside/posix_test.h"
#include "tests/support/database_rows.h"
#include "tests/support/real_library.h"
#include "tests/support/sound_file.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// A library with a source folder New and a folder of covers beside it.
class Shelf : public support::RealLibrary {
  public:
    Shelf() {
        run.settings.FromFilesPath = R"(D:\New)";
        run.settings.AlbumCoverFolder = R"(D:\Covers\)";
        fs::create_directory(Folder() / "Covers");
        fs::create_directory(Folder() / "New");
    }

    void AddNew(const std::string& path, const std::string& bytes) const {
        const fs::path file = Folder() / "New" / path;
        fs::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << bytes;
        // However long a test takes, its files are of one age.
        outside::SetModified(file, 1'600'000'000);
    }
    void AddSong(const std::string& path, const std::string& song, const std::string& artist,
                 const std::string& album, std::uint8_t track) const {
        support::RawTag tag;
        tag.song = song;
        tag.artist = artist;
        tag.album = album;
        tag.track = track;
        tag.genre = 17;
        AddNew(path, support::SoundFile(tag));
    }
    void Add() { AddFilesToLibrary(run); }

    /// What lies in the library and among the covers.
    std::vector<std::string> Everything() const {
        std::vector<std::string> paths;
        for (const char* const folder : {"Covers", "Music"}) {
            for (const auto& entry : fs::recursive_directory_iterator(Folder() / folder))
                paths.push_back(fs::relative(entry.path(), Folder()).string());
        }
        std::sort(paths.begin(), paths.end());
        return paths;
    }
};

POSIX_TEST(AddRealFiles, BringsCopiesThatOtherReadersFind) {
    Shelf shelf;
    shelf.AddSong("x.mp3", "J\xF3ga", "Bj\xF6rk", "It's 100% #1", 3);
    shelf.AddNew("Žofie/Řeka/1 - Přeháňka.MP3", support::UntaggedSoundFile());
    shelf.AddNew("Žofie/Řeka/front.jpeg", "image");
    shelf.run.settings.LibraryRoot = "d:/Music\\";
    shelf.Add();
    EXPECT_THAT(shelf.host.log, IsEmpty());
    EXPECT_THAT(shelf.State(), ElementsAre("Björk|It's 100% #1|1", "Unknown|Řeka|1", "Žofie|Řeka|1",
                                           "d:\\Music\\Björk\\It's 100% #1\\Jóga.mp3|Jóga|3",
                                           "d:\\Music\\Unknown\\Řeka\\Přeháňka.mp3|Přeháňka|1",
                                           "d:\\Music\\Žofie\\Řeka\\Přeháňka.mp3|Přeháňka|1"));
    EXPECT_EQ(fs::file_size(shelf.Music("Björk/It's 100% #1/Jóga.mp3")), 545U);
    EXPECT_TRUE(fs::exists(shelf.Folder() / "Covers/Žofie - Řeka.jpeg"));
    EXPECT_EQ(shelf.Faults(), "");
    EXPECT_THAT(support::ExportedTable(shelf.DatabaseFile(), "Tracks"), HasSubstr("Přeháňka"));
    EXPECT_THAT(support::ExportedTable(shelf.DatabaseFile(), "Spinner"),
                HasSubstr("rtsp://localhost/spinlinks/000-"));
}

TEST(AddRealFiles, KeepsTheTimesOfTheFiles) {
    Shelf shelf;
    shelf.AddSong("x.mp3", "Song", "Artist", "Album", 1);
    const fs::path source = shelf.Folder() / "New/x.mp3";
    fs::last_write_time(source, fs::last_write_time(source) - std::chrono::hours(1000));
    shelf.Add();
    EXPECT_EQ(fs::last_write_time(shelf.Music("Artist/Album/Song.mp3")),
              fs::last_write_time(source));
}

POSIX_TEST(AddRealFiles, RefusesALibraryThatALinkLeadsTo) {
    Shelf shelf;
    fs::create_directory_symlink(shelf.Music(), shelf.Folder() / "Alias");
    shelf.AddFile(R"(Artist\Album\a - x.mp3)");
    shelf.run.settings.FromFilesPath = R"(D:\Alias\Artist)";
    shelf.Add();
    EXPECT_THAT(shelf.host.log,
                ElementsAre("Quillon: AddFilesToLibrary, Source path D:\\Alias\\Artist lies in the "
                            "library D:\\Music, which would be copied into itself"));
    EXPECT_THAT(shelf.State(), IsEmpty());
}

POSIX_TEST(AddRealFiles, PassesOverALinkIntoTheLibrary) {
    Shelf shelf;
    shelf.AddFile(R"(Artist\Album\a - x.mp3)");
    shelf.AddNew("B/b - y.mp3", support::UntaggedSoundFile());
    fs::create_directory_symlink(shelf.Music(), shelf.Folder() / "New/B/Link");
    shelf.Add();
    EXPECT_THAT(shelf.Rows("SELECT Title FROM Tracks"), ElementsAre("y", "y"));
    EXPECT_THAT(shelf.host.log,
                Contains("Quillon: AddFolder, D:\\New\\B\\Link belongs to the library already"));
}

POSIX_TEST(AddRealFiles, LeavesNothingOfAFileThatCannotBeRead) {
    Shelf shelf;
    shelf.AddSong("1.mp3", "One", "Artist", "Album", 1);
    shelf.AddSong("2.mp3", "Two", "Artist", "Album", 2);
    fs::permissions(shelf.Folder() / "New/1.mp3", fs::perms::none);
    shelf.CloseDatabase();
    EXPECT_TRUE(support::RunsWellUnprivileged(shelf.Folder(), [&shelf] {
        shelf.OpenDatabase();
        shelf.Add();
        EXPECT_THAT(shelf.State(),
                    ElementsAre("Artist|Album|1", "D:\\Music\\Artist\\Album\\Two.mp3|Two|2"));
        EXPECT_THAT(shelf.host.log,
                    ElementsAre(HasSubstr("Read ID3 File Error: Line 3 Permission denied"),
                                HasSubstr("AddFile Line 1 Not added, since nobody knows")));
    }));
    EXPECT_THAT(shelf.Everything(),
                ElementsAre("Music/Artist", "Music/Artist/Album", "Music/Artist/Album/Two.mp3"));
}

POSIX_TEST(AddRealFiles, LeavesNothingOfACopyThatFails) {
    Shelf shelf;
    shelf.AddNew("A/B/a - x.mp3", support::UntaggedSoundFile());
    shelf.AddNew("A/B/front.jpg", "image");
    fs::permissions(shelf.Folder() / "New/A/B/a - x.mp3", fs::perms::none);
    shelf.CloseDatabase();
    EXPECT_TRUE(support::RunsWellUnprivileged(shelf.Folder(), [&shelf] {
        shelf.OpenDatabase();
        shelf.Add();
        EXPECT_THAT(shelf.State(), IsEmpty());
        EXPECT_THAT(shelf.Rows("SELECT * FROM SpinnerArtist"), IsEmpty());
        EXPECT_THAT(shelf.host.log,
                    Contains(HasSubstr("AddFile Line 1 Not added, since nobody knows")).Times(2));
    }));
    EXPECT_THAT(shelf.Everything(), IsEmpty());
}

POSIX_TEST(AddRealFiles, TakesWriteProtectedCopiesBack) {
    Shelf shelf;
    shelf.AddSong("1.mp3", "One", "Artist", "Album", 1);
    shelf.AddNew("front.jpg", "image");
    constexpr auto ReadOnly = fs::perms::owner_read | fs::perms::group_read;
    fs::permissions(shelf.Folder() / "New/1.mp3", ReadOnly);
    fs::permissions(shelf.Folder() / "New/front.jpg", ReadOnly);
    shelf.CloseDatabase();
    EXPECT_TRUE(support::RunsWellUnprivileged(shelf.Folder(), [&shelf] {
        shelf.OpenDatabase();
        shelf.Database().RefuseValue("Song", "One");
        shelf.Add();
        EXPECT_THAT(shelf.host.log,
                    ElementsAre(R"(Quillon: AddFile Line 6 refused (D:\New\1.mp3))"));
    }));
    EXPECT_THAT(shelf.Everything(), IsEmpty());
}

/// A track as added keeps its row; it gets its artist, and among files of one age keeps the number
/// that its tag gave it.
TEST(AddRealFiles, KeepTheirRowsInAReconciliation) {
    Shelf shelf;
    shelf.AddSong("1.mp3", "One", "Artist", "Album", 2);
    shelf.AddSong("2.mp3", "Two", "Artist", "Album", 1);
    shelf.AddNew("A/B/x - f.mp3", support::UntaggedSoundFile());
    shelf.AddNew("A/B/x - g.mp3", support::UntaggedSoundFile());
    shelf.AddNew("A/B/front.jpg", "image");
    shelf.Add();
    const auto keys = shelf.Rows("SELECT ID, CDJID, SoundFile, Title FROM Tracks ORDER BY ID");
    const auto albums =
        shelf.Rows("SELECT ID, CDJID, Artist, Title, Tracks, ImageFile FROM Albums");
    EXPECT_THAT(shelf.Rows("SELECT DISTINCT Artist FROM Tracks"), ElementsAre("Null"));

    shelf.Reconcile();
    EXPECT_EQ(shelf.Rows("SELECT ID, CDJID, SoundFile, Title FROM Tracks ORDER BY ID"), keys);
    EXPECT_EQ(shelf.Rows("SELECT ID, CDJID, Artist, Title, Tracks, ImageFile FROM Albums"), albums);
    EXPECT_THAT(shelf.Rows("SELECT Artist, Title, Track FROM Tracks ORDER BY SoundFile"),
                ElementsAre("A|f|1", "A|g|2", "Artist|One|2", "Artist|Two|1", "Unknown|f|1",
                            "Unknown|g|2"));
    EXPECT_THAT(shelf.host.log, IsEmpty());

    const auto rows = shelf.Rows("SELECT * FROM Tracks ORDER BY ID");
    shelf.Add();
    EXPECT_EQ(shelf.Rows("SELECT * FROM Tracks ORDER BY ID"), rows);
    EXPECT_EQ(shelf.Faults(), "");
}

/// It looks at the library's own albums alone, so it gives the files an album and rows there.
TEST(AddRealFiles, OfADiscGetRowsOfTheirOwnInAReconciliation) {
    Shelf shelf;
    shelf.Database().Execute(
        "INSERT INTO Albums (CDJID, Artist, Title, Tracks, Player) VALUES ('C7', 'Artist', "
        "'Album', "
        "9, 1)");
    shelf.AddSong("1.mp3", "One", "Artist", "Album", 1);
    shelf.Add();
    EXPECT_THAT(shelf.Rows("SELECT CDJID, Title FROM Tracks"), ElementsAre("C7|One"));
    shelf.Reconcile();
    EXPECT_THAT(shelf.Rows("SELECT CDJID, Title FROM Tracks ORDER BY ID"),
                ElementsAre("C7|One", "252E671073EC0001|One"));
    shelf.Reconcile();
    EXPECT_THAT(shelf.Rows("SELECT CDJID FROM Tracks"), SizeIs(2));
}

/// A reconciliation reads titles from paths, from the first " - " on.
TEST(AddRealFiles, OfAFolderWithADashGetAnotherTitleInAReconciliation) {
    Shelf shelf;
    shelf.AddSong("1.mp3", "One", "Solo - Duo", "Album", 1);
    shelf.Add();
    EXPECT_THAT(shelf.Rows("SELECT ID, Title FROM Tracks"), ElementsAre("1|One"));
    shelf.Reconcile();
    EXPECT_THAT(shelf.Rows("SELECT ID, Title FROM Tracks"), ElementsAre(R"(1|Duo\Album\One)"));
}

/// Runs that are killed before each of their database statements in turn.
class AddingIsKilledTest : public ::testing::Test {
  protected:
    /// What has reached the disk when the process dies.
    enum class Written { Everything, WhateverThereIs };

    static void Prepare(Shelf& shelf) {
        shelf.AddSong("1.mp3", "One", "Artist", "Album", 1);
        shelf.AddSong("2.mp3", "Two", "Artist", "Album", 2);
        shelf.AddNew("A/B/x - f.mp3", support::UntaggedSoundFile());
        shelf.AddNew("A/B/front.jpg", "image");
    }

    static std::vector<std::string> Covers(Shelf& shelf) {
        return shelf.Rows("SELECT Artist, ImageFile FROM Albums ORDER BY Artist, ID");
    }

    /// Rows of files that are not there would keep the next run from bringing them.
    static void ExpectNoRowWithoutItsFile(Shelf& shelf, std::size_t n) {
        for (const char* const path :
             {"SELECT SoundFile FROM Tracks",
              "SELECT ImageFile FROM Albums WHERE ImageFile Is Not Null"}) {
            for (const std::string& file : shelf.Rows(path))
                EXPECT_TRUE(shelf.run.files.FileExists(file)) << file << ", " << n;
        }
    }

    static void KillAtEvery(std::size_t step, Written written) {
        Shelf undisturbed;
        Prepare(undisturbed);
        undisturbed.Database().ForgetStatements();
        undisturbed.Add();
        const std::size_t statements = undisturbed.Database().Count("");
        const auto everything = undisturbed.Everything();
        const auto covers = Covers(undisturbed);
        const auto artists = undisturbed.Rows("SELECT Artist FROM SpinnerArtist ORDER BY Artist");
        undisturbed.Reconcile();
        const auto after = undisturbed.State();
        ASSERT_GT(statements, 40U);

        for (std::size_t n = 1; n <= statements; n += step) {
            Shelf shelf;
            Prepare(shelf);
            shelf.CloseDatabase();
            EXPECT_TRUE(support::IsKilled([&] {
                shelf.OpenDatabase();
                shelf.Database().BeforeStatementNumber(n, [&](Connection& database) {
                    if (written == Written::Everything) database.Flush();
                    outside::KillThisProcess();
                });
                shelf.Add();
            })) << n;

            shelf.OpenDatabase();
            ExpectNoRowWithoutItsFile(shelf, n);
            shelf.Add();
            EXPECT_EQ(shelf.Everything(), everything) << "killed before statement " << n;
            EXPECT_EQ(Covers(shelf), covers) << n;
            EXPECT_EQ(shelf.Rows("SELECT Artist FROM SpinnerArtist ORDER BY Artist"), artists) << n;
            EXPECT_THAT(shelf.Rows("SELECT SoundFile FROM Tracks"), SizeIs(4)) << n;
            EXPECT_THAT(shelf.Rows("SELECT Artist, Album, Song FROM Spinner GROUP BY Artist, "
                                   "Album, Song HAVING Count(*) > 1"),
                        IsEmpty())
                << n;
            // A count that a kill has left wrong is put right by it.
            shelf.Reconcile();
            EXPECT_EQ(shelf.State(), after) << n;
            EXPECT_THAT(shelf.host.log, IsEmpty()) << n;
            if (n % 5 == 0) {
                EXPECT_EQ(shelf.Faults(), "") << n;
            }
        }
    }
};

POSIX_TEST_F(AddingIsKilledTest, AndTheNextRunBringsTheRest) {
    KillAtEvery(outside::StepUnderSanitizers(4), Written::Everything);
}

POSIX_TEST_F(AddingIsKilledTest, WithItsLastRowsUnwrittenAndTheNextRunBringsTheRest) {
    KillAtEvery(4 * outside::StepUnderSanitizers(3), Written::WhateverThereIs);
}

}  // namespace
}  // namespace quillon
