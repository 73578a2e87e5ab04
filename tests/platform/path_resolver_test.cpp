#include "platform/portable/path_resolver.h"

#include <chrono>
#include <gtest/gtest.h>

#include "tests/outside/temporary_folder.h"
#include "tests/platform/failure_of.h"

namespace quillon {
namespace {

class PathResolverTest : public testing::Test {
  protected:
    PathResolverTest() : resolver_(Drives(folder_)) {}

    static DriveTable Drives(const outside::TemporaryFolder& folder) {
        DriveTable drives(folder.Path());
        drives.Map("D", folder.Path());
        return drives;
    }
    /// The local path behind the test's folder.
    std::string Local(std::string_view path) {
        const std::string local = resolver_.Local(path);
        const std::string root = folder_.Path().string();
        EXPECT_TRUE(local.starts_with(root));
        return local.substr(root.size());
    }

    outside::TemporaryFolder folder_;
    PathResolver resolver_;
};

TEST_F(PathResolverTest, FindsNamesWithoutLetterCaseInEveryComponent) {
    folder_.MakeFile("Music/Motörhead/Álbum/Song.MP3");
    EXPECT_EQ(Local("d:\\music\\MOTÖRHEAD\\álbum\\song.mp3"), "/Music/Motörhead/Álbum/Song.MP3");
    EXPECT_EQ(Local("D:\\Music\\Motörhead\\Álbum\\Song.MP3"), "/Music/Motörhead/Álbum/Song.MP3");
    EXPECT_EQ(Local("D:\\MUSIC\\motörhead"), "/Music/Motörhead");
    EXPECT_EQ(Local("D:\\"), "");
}

TEST_F(PathResolverTest, KeepsWhatDoesNotExistAsItIsWritten) {
    folder_.MakeFolder("Music/Artist");
    EXPECT_EQ(Local("D:\\music\\ARTIST\\New Album\\x.mp3"), "/Music/Artist/New Album/x.mp3");
    EXPECT_EQ(Local("D:\\none\\Music"), "/none/Music");
    EXPECT_EQ(Local("D:\\None"), "/None");
}

TEST_F(PathResolverTest, TellsWhatItSawOfAPlace) {
    folder_.MakeFile("a/File");
    std::filesystem::create_symlink("File", folder_ / "a/Link");
    std::filesystem::create_directory_symlink("gone", folder_ / "Lost");
    const auto place = [this](const char* path) {
        return resolver_.Locate(ParseWindowsPath(path));
    };
    const LocalPlace file = place("D:\\a\\File");
    ASSERT_TRUE(file.facts);
    EXPECT_EQ(file.facts->kind, LocalKind::File);
    EXPECT_EQ(place("D:\\a").facts->kind, LocalKind::Folder);
    for (const char* const free : {"D:\\a\\none", "D:\\A\\none", "D:\\none\\File", "D:\\x\\y\\z"}) {
        EXPECT_TRUE(place(free).isFree) << free;
        EXPECT_FALSE(place(free).facts) << free;
    }
    // What a link leads to was not looked at, and behind a lost one there may be anything.
    for (const char* const unseen :
         {"D:\\a\\Link", "D:\\a\\file", "D:\\Lost\\x", "D:\\lost\\x\\y"}) {
        EXPECT_FALSE(place(unseen).isFree) << unseen;
        EXPECT_FALSE(place(unseen).facts) << unseen;
    }
}

TEST_F(PathResolverTest, ExactNameWinsOverOthers) {
    folder_.MakeFile("a/SONG");
    folder_.MakeFile("a/Song");
    folder_.MakeFile("a/song");
    EXPECT_EQ(Local("D:\\a\\song"), "/a/song");
    EXPECT_EQ(Local("D:\\a\\Song"), "/a/Song");
    EXPECT_EQ(Local("D:\\A\\Song"), "/a/Song");
    EXPECT_EQ(Local("D:\\a\\sOnG"), "/a/SONG");
}

TEST_F(PathResolverTest, SeesWhatOthersChangeMeanwhile) {
    folder_.MakeFile("a/One");
    EXPECT_EQ(Local("D:\\a\\two"), "/a/two");
    folder_.MakeFile("a/TWO");
    std::filesystem::last_write_time(
        folder_ / "a", std::filesystem::file_time_type::clock::now() + std::chrono::hours(1));
    EXPECT_EQ(Local("D:\\a\\two"), "/a/TWO");
    std::filesystem::rename(folder_ / "a", folder_ / "b");
    folder_.MakeFile("a/Three");
    EXPECT_EQ(Local("D:\\a\\two"), "/a/two");
    EXPECT_EQ(Local("D:\\a\\three"), "/a/Three");
}

TEST_F(PathResolverTest, FollowsTheUsersLinks) {
    const outside::TemporaryFolder elsewhere;
    elsewhere.MakeFile("Deep/x.mp3");
    std::filesystem::create_directory_symlink(elsewhere.Path(), folder_ / "Link");
    EXPECT_EQ(Local("D:\\link\\deep\\X.mp3"), "/Link/Deep/x.mp3");
}

TEST_F(PathResolverTest, RefusesRootsThatAreNotMapped) {
    EXPECT_EQ(FailureOf([&] { resolver_.Local("E:\\x.mp3"); }), "Path not found: E:\\x.mp3");
    EXPECT_EQ(FailureOf([&] { resolver_.Local("\\\\nas\\music\\x"); }),
              "Path not found: \\\\nas\\music\\x");
}

TEST_F(PathResolverTest, NoTextLeadsOutsideTheMappedFolder) {
    for (const char* const path : {"D:\\..\\etc\\passwd", "D:/../etc/passwd", "D:\\a\\..\\..\\etc",
                                   "D:\\..", "D:\\a/../../b"})
        EXPECT_EQ(FailureOf([&] { resolver_.Local(path); }),
                  "Bad file name or number: " + std::string(path));
}

TEST_F(PathResolverTest, AFileIsNoFolder) {
    folder_.MakeFile("file");
    EXPECT_EQ(Local("D:\\FILE\\x\\y"), "/file/x/y");
}

TEST_F(PathResolverTest, ThousandsOfNamesInOneFolder) {
    folder_.MakeFolder("Flat");
    constexpr int Count = 5000;
    for (int i = 0; i < Count; ++i)
        folder_.MakeFile("Flat/Song " + std::to_string(i) + ".MP3");
    for (int i = 0; i < Count; ++i) {
        const std::string number = std::to_string(i);
        ASSERT_EQ(Local("D:\\FLAT\\song " + number + ".mp3"), "/Flat/Song " + number + ".MP3");
    }
}

TEST(FolderIndex, KnowsWhatThisProcessChanged) {
    const outside::TemporaryFolder folder;
    folder.MakeFile("One");
    FolderIndex index;
    const std::string path = folder.Path().string();
    EXPECT_EQ(index.Find(path, "one"), "One");
    folder.MakeFile("Two");
    index.Added(path + "/Two");
    EXPECT_EQ(index.Find(path, "TWO"), "Two");
    std::filesystem::remove(folder / "One");
    index.Removed(path + "/One");
    EXPECT_EQ(index.Find(path, "one"), "");
}

TEST(FolderIndex, FindsTheTwinThatIsLeft) {
    const outside::TemporaryFolder folder;
    folder.MakeFile("a");
    folder.MakeFile("A");
    FolderIndex index;
    const std::string path = folder.Path().string();
    EXPECT_EQ(index.Find(path, "a"), "A");
    std::filesystem::remove(folder / "A");
    index.Removed(path + "/A");
    EXPECT_EQ(index.Find(path, "A"), "a");
}

TEST(FolderIndex, FindsNothingInWhatIsNoFolder) {
    const outside::TemporaryFolder folder;
    folder.MakeFile("file");
    FolderIndex index;
    EXPECT_EQ(index.Find((folder / "file").string(), "x"), std::nullopt);
    EXPECT_EQ(index.Find((folder / "none").string(), "x"), std::nullopt);
}

TEST(FolderIndex, ManyFoldersAreFoundAgain) {
    const outside::TemporaryFolder folder;
    FolderIndex index;
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 200; ++i) {
            const std::string name = std::to_string(i);
            if (round == 0) folder.MakeFile(name + "/File");
            ASSERT_EQ(index.Find((folder / name).string(), "file"), "File");
        }
    }
}

}  // namespace
}  // namespace quillon
