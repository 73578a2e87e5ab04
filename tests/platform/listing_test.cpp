#include <algorithm>
#include <chrono>

#include "platform/basic_text.h"
#include "platform/portable/local_time.h"
#include "tests/outside/child_process.h"
#include "tests/outside/density.h"
#include "tests/platform/files_fixture.h"

namespace quillon {
namespace {

using ListingTest = FilesTest;

TEST_F(ListingTest, IsInTheOrderOfAWindowsVolume) {
    for (const char* const name : {"b.mp3", "A.mp3", "Ä.mp3", "_.mp3", "a2.mp3", "C.mp3", "1.mp3"})
        folder_.MakeFile(std::string("M/") + name);
    for (const char* const name : {"Zappa", "abba", "Éire", "ABC"})
        folder_.MakeFolder(std::string("M/") + name);
    EXPECT_EQ(FileNames("D:\\M"),
              (Names{"1.mp3", "A.mp3", "a2.mp3", "b.mp3", "C.mp3", "_.mp3", "Ä.mp3"}));
    EXPECT_EQ(FolderNames("D:\\M"), (Names{"abba", "ABC", "Zappa", "Éire"}));
}

TEST_F(ListingTest, TellsPathSizeAndTime) {
    folder_.MakeFile("Music/x.mp3", "12345");
    outside::SetModified(folder_ / "Music/x.mp3", 1763204335, 999'999'999);
    const Listing<FileEntry> entries = files_.FilesIn("d:/Music/");
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries.entries[0].path, "d:\\Music\\x.mp3");
    EXPECT_EQ(entries.entries[0].name, "x.mp3");
    EXPECT_EQ(entries.entries[0].size, 5U);
    EXPECT_EQ(entries.entries[0].modified, LocalTime().Of(1763204335));
    EXPECT_EQ(files_.FilesIn("D:\\").size(), 0U);
    EXPECT_EQ(files_.SubFolders("D:\\").entries[0].path, "D:\\Music");
}

POSIX_TEST_F(ListingTest, OfFilesWhoseNamesDifferInCaseOneIsListed) {
    folder_.MakeFile("M/song.mp3", "1");
    folder_.MakeFile("M/SONG.mp3", "22");
    EXPECT_EQ(FileNames("D:\\M"), Names{"SONG.mp3"});
    EXPECT_EQ(files_.FilesIn("D:\\M").unseen, Names{"D:\\M\\song.mp3"});
    EXPECT_EQ(notes_,
              Names{"Left out, what it stands for is kept: D:\\M\\song.mp3 (only letter case "
                    "tells its name from that of D:\\M\\SONG.mp3; rename one of them)"});
    EXPECT_EQ(files_.GetFile("D:\\M\\song.mp3").size, 1U);
    EXPECT_EQ(files_.GetFile("D:\\M\\SONG.mp3").size, 2U);
}

POSIX_TEST_F(ListingTest, LeavesOutWhatWindowsCannotShowAndSaysSoOnce) {
    for (const char* const name : {"ok.mp3", "a:b.mp3", "caf\xE9.mp3", "dot.", "new\nline", "x?"})
        folder_.MakeFile(std::string("M/") + name);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(FileNames("D:\\M"), Names{"ok.mp3"});
        EXPECT_EQ(FolderNames("D:\\M"), Names{});
    }
    std::sort(notes_.begin(), notes_.end());
    EXPECT_EQ(notes_, (Names{"Left out, a name that Windows cannot hold: D:\\M\\a:b.mp3",
                             "Left out, a name that Windows cannot hold: D:\\M\\dot.",
                             "Left out, a name that Windows cannot hold: D:\\M\\new\nline",
                             "Left out, a name that Windows cannot hold: D:\\M\\x?",
                             "Left out, a name that is not UTF-8: D:\\M\\caf\\xE9.mp3"}));
}

TEST_F(ListingTest, LongestNamesAreListed) {
    const std::string longest(255, 'x');
    folder_.MakeFile("M/" + longest);
    EXPECT_EQ(FileNames("D:\\M"), Names{longest});
    EXPECT_TRUE(files_.FileExists("D:\\M\\" + longest));
    EXPECT_FALSE(files_.FileExists("D:\\M\\" + longest + "x"));
}

POSIX_TEST_F(ListingTest, FollowsLinksAndNotesBrokenOnes) {
    folder_.MakeFile("Else/x.mp3", "abc");
    folder_.MakeFolder("M");
    std::filesystem::create_symlink(folder_ / "Else/x.mp3", folder_ / "M/link.mp3");
    std::filesystem::create_directory_symlink(folder_ / "Else", folder_ / "M/Folder");
    std::filesystem::create_symlink("nowhere", folder_ / "M/broken.mp3");
    std::filesystem::create_symlink("itself", folder_ / "M/itself");
    EXPECT_EQ(FileNames("D:\\M"), Names{"link.mp3"});
    EXPECT_EQ(files_.FilesIn("D:\\M").entries[0].size, 3U);
    EXPECT_EQ(FolderNames("D:\\M"), Names{"Folder"});
    EXPECT_EQ(FileNames("D:\\M\\Folder"), Names{"x.mp3"});
    std::sort(notes_.begin(), notes_.end());
    EXPECT_EQ(notes_,
              (Names{"Cannot be looked at, what it stands for is kept: D:\\M\\broken.mp3 (it leads "
                     "to where nothing is at present)",
                     "Cannot be looked at, what it stands for is kept: D:\\M\\itself (Too many "
                     "levels of symbolic links)"}));
}

POSIX_TEST_F(ListingTest, ALinkWhoseTargetIsAwayIsUnseenAmongFilesAndFolders) {
    folder_.MakeFile("M/song.mp3");
    folder_.MakeFolder("M/Folder");
    std::filesystem::create_symlink("away", folder_ / "M/Link");
    EXPECT_EQ(files_.FilesIn("D:\\M").unseen, Names{"D:\\M\\Link"});
    EXPECT_EQ(files_.SubFolders("D:\\M").unseen, Names{"D:\\M\\Link"});
    EXPECT_EQ(FileNames("D:\\M"), Names{"song.mp3"});
    EXPECT_EQ(FolderNames("D:\\M"), Names{"Folder"});
}

POSIX_TEST_F(ListingTest, NobodyCanTellWhetherAPathBehindALostLinkExists) {
    folder_.MakeFolder("M");
    std::filesystem::create_symlink("away", folder_ / "M/Link");
    const std::string reason = " (a link leads to where nothing is at present)";
    for (const char* const path : {"D:\\M\\Link", "D:\\M\\Link\\Album", "D:\\M\\Link\\a.mp3"}) {
        const std::string message = std::string("Path not found: ") + path + reason;
        EXPECT_EQ(FailureOf([&] { files_.FolderExists(path); }), message);
        EXPECT_EQ(FailureOf([&] { files_.FileExists(path); }), message);
        EXPECT_TRUE(FolderMayExist(files_, path));
    }
    EXPECT_FALSE(files_.FolderExists("D:\\M\\Other"));
    EXPECT_FALSE(FolderMayExist(files_, "D:\\M\\Other"));
}

POSIX_TEST_F(ListingTest, NobodyCanTellWhatAClosedFolderHolds) {
    folder_.MakeFile("M/Closed/x.mp3");
    outside::SetRights(folder_.Path(), 0755);
    outside::SetRights(folder_ / "M/Closed", 0);
    EXPECT_EQ(outside::AsOrdinaryUser(
                  [&] { return FailureOf([&] { files_.FileExists("D:\\M\\Closed\\x.mp3"); }); }),
              "Permission denied: D:\\M\\Closed\\x.mp3");
    EXPECT_NE(outside::AsOrdinaryUser(
                  [&] { return FailureOf([&] { files_.FileExists("D:\\M\\Closed\\X.mp3"); }); }),
              "");
    outside::SetRights(folder_ / "M/Closed", 0755);
}

POSIX_TEST_F(ListingTest, DoesNotEnterAFolderInsideItself) {
    folder_.MakeFolder("Music/Artist/Album");
    std::filesystem::create_directory_symlink(folder_ / "Music", folder_ / "Music/Artist/Up");
    std::filesystem::create_directory_symlink(".", folder_ / "Music/Here");
    std::filesystem::create_directory_symlink(folder_ / "Music/Artist", folder_ / "Music/Same");
    EXPECT_EQ(FolderNames("D:\\Music"), (Names{"Artist", "Same"}));
    EXPECT_EQ(FolderNames("D:\\Music\\Artist"), Names{"Album"});
    EXPECT_EQ(FolderNames("D:\\Music\\Same"), Names{"Album"});
    EXPECT_EQ(notes_, (Names{"Left out, a folder inside itself: D:\\Music\\Here",
                             "Left out, a folder inside itself: D:\\Music\\Artist\\Up",
                             "Left out, a folder inside itself: D:\\Music\\Same\\Up"}));
}

POSIX_TEST_F(ListingTest, ALinkAboveTheMappedFolderEndsAtTheMappedFolder) {
    const outside::TemporaryFolder above;
    above.MakeFile("Music/Artist/x.mp3");
    above.MakeFolder("Other");
    std::filesystem::create_directory_symlink(above.Path(), above / "Music/Above");
    DriveTable drives(above.Path());
    drives.Map("M", above / "Music");
    PathResolver resolver(drives);
    PortableFiles files(resolver, nullptr);
    EXPECT_EQ(files.SubFolders("M:\\").size(), 2U);
    const Listing<FolderEntry> entries = files.SubFolders("M:\\Above");
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries.entries[0].path, "M:\\Above\\Other");
}

POSIX_TEST_F(ListingTest, LeavesOutPipesAndSockets) {
    folder_.MakeFolder("M");
    outside::MakePipe(folder_ / "M/pipe.mp3");
    EXPECT_EQ(FileNames("D:\\M"), Names{});
    EXPECT_EQ(notes_, Names{"Left out, neither file nor folder: D:\\M\\pipe.mp3"});
    EXPECT_EQ(FailureOf([&] { files_.OpenBinary("D:\\M\\pipe.mp3"); }),
              "Permission denied: D:\\M\\pipe.mp3 (this is a pipe and no file)");
    EXPECT_FALSE(files_.FileExists("D:\\M\\pipe.mp3"));
}

TEST_F(ListingTest, NeedsAFolder) {
    folder_.MakeFile("file");
    for (const char* const path : {"D:\\none", "D:\\none\\x", "D:\\file", "E:\\x"}) {
        EXPECT_EQ(FailureOf([&] { files_.FilesIn(path); }), std::string("Path not found: ") + path);
        EXPECT_EQ(FailureOf([&] { files_.SubFolders(path); }),
                  std::string("Path not found: ") + path);
    }
    EXPECT_EQ(FailureOf([&] { files_.FilesIn("D:\\a*"); }), "Bad file name or number: D:\\a*");
}

POSIX_TEST_F(ListingTest, SaysWhenAFolderMayNotBeRead) {
    folder_.MakeFile("M/Closed/x.mp3");
    outside::SetRights(folder_.Path(), 0755);
    outside::SetRights(folder_ / "M/Closed", 0);
    EXPECT_EQ(outside::AsOrdinaryUser(
                  [&] { return FailureOf([&] { files_.FilesIn("D:\\M\\Closed"); }); }),
              "Permission denied: D:\\M\\Closed");
    outside::SetRights(folder_ / "M/Closed", 0744);
    EXPECT_EQ(outside::AsOrdinaryUser(
                  [&] { return FailureOf([&] { files_.FilesIn("D:\\M\\Closed"); }); }),
              "Permission denied: D:\\M\\Closed\\x.mp3");
    outside::SetRights(folder_ / "M/Closed", 0755);
}

TEST_F(ListingTest, ThousandsOfFilesOfOneFolder) {
    folder_.MakeFolder("Flat");
    // Under Wine each new file looks through all of the folder.
    const int count = 5000 / static_cast<int>(outside::StepUnderSanitizers(5));
    for (int i = 0; i < count; ++i)
        folder_.MakeFile("Flat/" + std::to_string(i) + ".mp3");
    const Listing<FileEntry> entries = files_.FilesIn("D:\\Flat");
    ASSERT_EQ(entries.size(), static_cast<std::size_t>(count));
    EXPECT_TRUE(std::is_sorted(entries.begin(), entries.end(),
                               [](const FileEntry& left, const FileEntry& right) {
                                   return WindowsNameLess(left.name, right.name);
                               }));
    for (const FileEntry& entry : entries)
        ASSERT_EQ(files_.GetFile(entry.path).name, entry.name);
}

TEST_F(ListingTest, DoesNotShowUnfinishedFiles) {
    folder_.MakeFolder("M");
    const std::unique_ptr<TextWriter> writer = files_.CreateText("D:\\M\\list.m3u");
    writer->WriteLine("x");
    EXPECT_EQ(folder_.Count("M"), 1U);
    EXPECT_EQ(FileNames("D:\\M"), Names{});
    EXPECT_EQ(notes_, Names{});
    writer->Close();
    EXPECT_EQ(FileNames("D:\\M"), Names{"list.m3u"});
}

}  // namespace
}  // namespace quillon
