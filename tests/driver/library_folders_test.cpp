#include "driver/library_folders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/fakes.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LibraryFolders : public ::testing::Test {
  protected:
    LibraryFolders() {
        settings.LibraryRoot = R"(D:\Music)";
        files.AddFolder(R"(D:\Music\Vinyl)");
        files.AddFolder(R"(D:\Music\CDs\Artist)");
        files.AddFolder(R"(E:\More)");
        files.AddFolder(R"(E:\Even More)");
    }

    std::vector<std::string> Paths() {
        std::vector<std::string> paths;
        for (const FolderEntry& folder : BuildLibraryFolders(files, settings)) {
            paths.push_back(folder.path);
        }
        return paths;
    }

    fakes::FakeWorld world;
    fakes::FakeFiles& files = world.files;
    Settings settings;
};

TEST_F(LibraryFolders, AreTheRootItself) {
    const std::vector<FolderEntry> folders = BuildLibraryFolders(files, settings);
    ASSERT_EQ(folders.size(), 1U);
    EXPECT_EQ(folders[0].path, R"(D:\Music)");
    EXPECT_EQ(folders[0].name, "Music");
}

TEST_F(LibraryFolders, LookTheSameHoweverTheRootIsWritten) {
    settings.LibraryRoot = R"(D:\Music\)";
    EXPECT_THAT(Paths(), ElementsAre(R"(D:\Music)"));
}

TEST_F(LibraryFolders, AreNoneWithoutARoot) {
    settings.LibraryRoot = "";
    EXPECT_THAT(Paths(), IsEmpty());
    settings.LibraryRoot = R"(X:\Gone)";
    EXPECT_THAT(Paths(), IsEmpty());
    settings.LibraryDepthOption = true;
    EXPECT_THAT(Paths(), IsEmpty());
}

TEST_F(LibraryFolders, AreTheSubFoldersWithTheDepthOption) {
    settings.LibraryDepthOption = true;
    EXPECT_THAT(Paths(), ElementsAre(R"(D:\Music\CDs)", R"(D:\Music\Vinyl)"));
}

TEST_F(LibraryFolders, IncludeFoldersThatTextFilesName) {
    settings.LibraryDepthOption = true;
    files.AddFile(R"(D:\Music\more.txt)", "E:\\More\r\nE:\\Even More\\");
    EXPECT_THAT(Paths(), ElementsAre(R"(D:\Music\CDs)", R"(D:\Music\Vinyl)", R"(E:\More)",
                                     R"(E:\Even More)"));
    const std::vector<FolderEntry> folders = BuildLibraryFolders(files, settings);
    EXPECT_EQ(folders[3].name, "Even More");
}

TEST_F(LibraryFolders, SkipLinesThatNameNoFolder) {
    settings.LibraryDepthOption = true;
    files.AddFile(R"(E:\file.mp3)");
    files.AddFile(R"(D:\Music\more.txt)", "X:\\Nowhere\n\nE:\\file.mp3\nnonsense\n \nE:\\More\n");
    EXPECT_THAT(Paths(), ElementsAre(R"(D:\Music\CDs)", R"(D:\Music\Vinyl)", R"(E:\More)"));
    EXPECT_THAT(world.host.log, IsEmpty());
}

TEST_F(LibraryFolders, TakeEveryFileForAListWhoseNameHoldsDotTxt) {
    settings.LibraryDepthOption = true;
    files.AddFile(R"(D:\Music\LIST.TXT.bak)", "E:\\More\n");
    files.AddFile(R"(D:\Music\other.doc)", "E:\\Even More\n");
    files.AddFile(R"(D:\Music\txt)", "E:\\Even More\n");
    EXPECT_THAT(Paths(), ElementsAre(R"(D:\Music\CDs)", R"(D:\Music\Vinyl)", R"(E:\More)"));
}

TEST_F(LibraryFolders, ReadNoTextFilesWithoutTheDepthOption) {
    files.AddFile(R"(D:\Music\more.txt)", "E:\\More\n");
    EXPECT_THAT(Paths(), ElementsAre(R"(D:\Music)"));
    EXPECT_THAT(world.calls.Of({"OpenText"}), IsEmpty());
}

}  // namespace
}  // namespace quillon
