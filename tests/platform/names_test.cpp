#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/portable/portable_files.h"
#include "tests/outside/file_marks.h"
#include "tests/outside/posix_test.h"
#include "tests/outside/temporary_folder.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

/// A folder with files, folders and links to both.
class NamesTest : public ::testing::Test {
  protected:
    NamesTest() {
        for (const char* const name : {"b.mp3", "a.jpg"})
            std::ofstream(folder_.Path() / name) << "x";
        for (const char* const name : {"CD1", "Scans"})
            fs::create_directory(folder_.Path() / name);
        fs::create_symlink("b.mp3", folder_.Path() / "link.mp3");
        fs::create_directory_symlink(".", folder_.Path() / "loop");
        fs::create_symlink("nowhere", folder_.Path() / "broken.mp3");
    }

    static DriveTable Drives(const fs::path& folder) {
        DriveTable drives(folder);
        drives.Map("D", folder);
        return drives;
    }

    template <typename Entry>
    static std::vector<std::string> Entries(const Listing<Entry>& list) {
        std::vector<std::string> names;
        for (const Entry& entry : list)
            names.push_back(entry.name);
        return names;
    }

    outside::TemporaryFolder folder_;
    PathResolver resolver_{Drives(folder_.Path())};
    std::vector<std::string> notes_;
    PortableFiles files_{resolver_,
                         [this](LogKind, const std::string& note) { notes_.push_back(note); }};
};

POSIX_TEST_F(NamesTest, AreThoseOfTheOtherKindBesideWhatIsListed) {
    const Listing<FileEntry> files = files_.FilesIn("D:\\");
    EXPECT_THAT(Entries(files), ElementsAre("a.jpg", "b.mp3", "link.mp3"));
    EXPECT_THAT(files.others, UnorderedElementsAre("CD1", "Scans"));

    const Listing<FolderEntry> folders = files_.SubFolders("D:\\CD1");
    EXPECT_THAT(folders.others, IsEmpty());
    std::ofstream(folder_.Path() / "CD1" / "loose.mp3") << "x";
    fs::create_symlink("loose.mp3", folder_.Path() / "CD1" / "alias.mp3");
    EXPECT_THAT(files_.SubFolders("D:\\CD1").others,
                UnorderedElementsAre("loose.mp3", "alias.mp3"));
}

TEST_F(NamesTest, AreThoseOfFilesAndOfFoldersThatAreNoLinks) {
    const FolderNames names = files_.NamesIn("D:\\");
    EXPECT_THAT(names.files, UnorderedElementsAre("a.jpg", "b.mp3", "link.mp3"));
    EXPECT_THAT(names.folders, UnorderedElementsAre("CD1", "Scans"));
    EXPECT_THAT(notes_, IsEmpty());
}

TEST_F(NamesTest, AreNoneWhereAFolderCannotBeListed) {
    for (const char* const path :
         {"D:\\nowhere", "D:\\a.jpg", "Q:\\x", "no path", "D:\\a\"b", ""}) {
        const FolderNames names = files_.NamesIn(path);
        EXPECT_THAT(names.files, IsEmpty()) << path;
        EXPECT_THAT(names.folders, IsEmpty()) << path;
    }
    EXPECT_THAT(notes_, IsEmpty());
}

TEST_F(NamesTest, AreNotThoseThatWindowsCannotHold) {
    std::ofstream(folder_.Path() / "what?.mp3") << "x";
    fs::create_directory(folder_.Path() / "CD: 2");
    const FolderNames names = files_.NamesIn("D:\\");
    EXPECT_THAT(names.files, UnorderedElementsAre("a.jpg", "b.mp3", "link.mp3"));
    EXPECT_THAT(names.folders, UnorderedElementsAre("CD1", "Scans"));
    EXPECT_THAT(files_.FilesIn("D:\\").others, UnorderedElementsAre("CD1", "Scans"));
}

}  // namespace
}  // namespace quillon
