#include "platform/portable/removed_files.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/outside/child_process.h"
#include "tests/platform/files_fixture.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

class StandingClock : public Clock {
  public:
    DateTime Now() const override { return now; }
    DateTime now = MakeDateTime(2026, 11, 21, 7, 13, 5);
};

/// Drive D: is the temporary folder; what is deleted below D:\Music is kept in its folder Removed.
class RemovedFilesTest : public FilesTest {
  protected:
    RemovedFilesTest() { KeepIn(folder_ / "Removed"); }

    void KeepIn(const fs::path& folder) {
        files_.OnDelete([removed = std::make_shared<RemovedFiles>(folder, clock_)](
                            const std::string& local, const WindowsPath& shown) {
            if (!shown.Text().starts_with("D:\\Music\\")) return false;
            removed->Take(local, shown);
            return true;
        });
    }

    static constexpr const char* Kept = "Removed/2026-11-21_07-13-05/D/Music/A/Song.mp3";
    StandingClock clock_;
};

TEST_F(RemovedFilesTest, ADeletedFileIsKeptWithItsPathAndItsTime) {
    folder_.MakeFile("Music/A/Song.mp3", "content");
    const auto modified = fs::last_write_time(folder_ / "Music/A/Song.mp3") - std::chrono::hours(9);
    fs::last_write_time(folder_ / "Music/A/Song.mp3", modified);
    // In whatever letter case it is named: the copy goes back where it came from.
    files_.DeleteFile("D:\\Music\\a\\SONG.mp3");
    EXPECT_FALSE(folder_.Exists("Music/A/Song.mp3"));
    EXPECT_FALSE(files_.FileExists("D:\\Music\\A\\Song.mp3"));
    EXPECT_EQ(folder_.Content(Kept), "content");
    EXPECT_EQ(fs::last_write_time(folder_ / Kept), modified);
}

TEST_F(RemovedFilesTest, WhatNobodyTakesIsDeleted) {
    folder_.MakeFile("Lists/a.pla");
    files_.DeleteFile("D:\\Lists\\a.pla");
    EXPECT_FALSE(folder_.Exists("Lists/a.pla"));
    EXPECT_FALSE(folder_.Exists("Removed"));
}

TEST_F(RemovedFilesTest, FilesOfARunLieTogetherAndNoneReplacesAnother) {
    for (int i = 0; i < 3; ++i) {
        folder_.MakeFile("Music/A/Song.mp3", std::to_string(i));
        files_.DeleteFile("D:\\Music\\A\\Song.mp3");
        clock_.now.days += 1;
    }
    EXPECT_EQ(folder_.Count("Removed"), 1U);
    EXPECT_EQ(folder_.Content(Kept), "0");
    EXPECT_EQ(folder_.Content("Removed/2026-11-21_07-13-05/D/Music/A/Song (2).mp3"), "1");
    EXPECT_EQ(folder_.Content("Removed/2026-11-21_07-13-05/D/Music/A/Song (3).mp3"), "2");
}

TEST_F(RemovedFilesTest, SharesHaveFoldersOfTheirOwn) {
    folder_.MakeFile("x.mp3", "x");
    RemovedFiles removed(folder_ / "Removed", clock_);
    const fs::path kept =
        removed.Take((folder_ / "x.mp3").string(), ParseWindowsPath("\\\\nas\\music\\A\\x.mp3"));
    EXPECT_EQ(kept, folder_ / "Removed/2026-11-21_07-13-05/nas/music/A/x.mp3");
    EXPECT_TRUE(fs::exists(kept));
}

POSIX_TEST_F(RemovedFilesTest, ALinkStillLeadsToItsFile) {
    folder_.MakeFile("elsewhere/Song.mp3", "content");
    folder_.MakeFolder("Music/A");
    fs::create_symlink("../../elsewhere/Song.mp3", folder_ / "Music/A/Song.mp3");
    files_.DeleteFile("D:\\Music\\A\\Song.mp3");
    EXPECT_FALSE(folder_.Exists("Music/A/Song.mp3"));
    EXPECT_TRUE(fs::is_symlink(folder_ / Kept));
    EXPECT_EQ(folder_.Content(Kept), "content");
    EXPECT_TRUE(folder_.Exists("elsewhere/Song.mp3"));
}

POSIX_TEST_F(RemovedFilesTest, AWriteProtectedFileStays) {
    folder_.MakeFile("Music/A/Song.mp3");
    outside::SetRights(folder_.Path(), 0777);
    outside::SetRights(folder_ / "Music/A", 0777);
    outside::SetRights(folder_ / "Music/A/Song.mp3", 0444);
    EXPECT_EQ(outside::AsOrdinaryUser(
                  [&] { return FailureOf([&] { files_.DeleteFile("D:\\Music\\A\\Song.mp3"); }); }),
              "Permission denied: D:\\Music\\A\\Song.mp3");
    EXPECT_TRUE(folder_.Exists("Music/A/Song.mp3"));
}

TEST_F(RemovedFilesTest, AFileThatCannotBeKeptStaysWhereItIs) {
    folder_.MakeFile("Music/A/Song.mp3", "content");
    folder_.MakeFile("Removed", "not a folder");
    EXPECT_EQ(FailureOf([&] { files_.DeleteFile("D:\\Music\\A\\Song.mp3"); }),
              "Path not found: D:\\Music\\A\\Song.mp3 (to be kept in " +
                  (folder_ / "Removed").string() + ")");
    EXPECT_EQ(folder_.Content("Music/A/Song.mp3"), "content");
}

TEST_F(RemovedFilesTest, AMissingFileIsMissing) {
    EXPECT_EQ(FailureOf([&] { files_.DeleteFile("D:\\Music\\no.mp3"); }),
              "File not found: D:\\Music\\no.mp3");
    EXPECT_FALSE(folder_.Exists("Removed"));
}

/// The kept files lie on another file system, where there is one.
class RemovedFilesElsewhereTest : public RemovedFilesTest {
  protected:
    RemovedFilesElsewhereTest() {
        elsewhere_ = "/dev/shm/quillon-test-" + std::to_string(getpid());
        KeepIn(elsewhere_);
        folder_.MakeFile("Music/A/Song.mp3", "content");
    }
    ~RemovedFilesElsewhereTest() override { fs::remove_all(elsewhere_); }

    fs::path elsewhere_;
};

TEST_F(RemovedFilesElsewhereTest, AFileIsCopiedWithItsTime) {
    const auto modified = fs::last_write_time(folder_ / "Music/A/Song.mp3") - std::chrono::hours(9);
    fs::last_write_time(folder_ / "Music/A/Song.mp3", modified);
    files_.DeleteFile("D:\\Music\\A\\Song.mp3");
    EXPECT_FALSE(folder_.Exists("Music/A/Song.mp3"));
    const fs::path kept = elsewhere_ / "2026-11-21_07-13-05/D/Music/A/Song.mp3";
    EXPECT_EQ(fs::file_size(kept), 7U);
    EXPECT_EQ(fs::last_write_time(kept), modified);
}

POSIX_TEST_F(RemovedFilesElsewhereTest, AFullDiskLeavesTheFileWhereItIs) {
    const auto here = FactsOf(folder_.Path().string()), there = FactsOf("/dev/shm");
    if (!there || here->identity.device == there->identity.device) return;
    const std::string told = outside::WithFilesUpTo(
        3, [&] { return FailureOf([&] { files_.DeleteFile("D:\\Music\\A\\Song.mp3"); }); });
    EXPECT_EQ(told,
              "Disk full: D:\\Music\\A\\Song.mp3 (to be kept in " + elsewhere_.string() + ")");
    EXPECT_EQ(folder_.Content("Music/A/Song.mp3"), "content");
    for (const auto& entry : fs::recursive_directory_iterator(elsewhere_))
        EXPECT_TRUE(entry.is_directory()) << entry.path();
}

}  // namespace
}  // namespace quillon
