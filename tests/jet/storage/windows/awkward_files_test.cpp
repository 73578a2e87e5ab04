// Databases as they lie on a user's disk on Windows.
#include <gtest/gtest.h>
#include <string>
#include <windows.h>

#include "jet/error.h"
#include "jet/storage/database_file.h"
#include "tests/jet/storage/random_rows.h"
#include "tests/jet/storage/schemas.h"
#include "tests/jet/storage/test_files.h"

namespace jet::storage::test {

namespace {

class AwkwardFiles : public testing::Test {
  protected:
    AwkwardFiles() { DatabaseFile::Create(path_, BothTables()); }

    /// Opening for changes fails so, and leaves the file and what is beside it.
    void ExpectRefused(ErrorKind kind, const std::string& words) {
        const std::size_t count = folder_.Count();
        try {
            DatabaseFile::Open(path_, OpenMode::ReadWrite);
            ADD_FAILURE() << "opened";
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), kind) << error.what();
            EXPECT_NE(std::string(error.what()).find(words), std::string::npos) << error.what();
        }
        EXPECT_EQ(folder_.Count(), count);
    }

    /// Adds a row; how many there are, as the next opening finds.
    static std::size_t RowsAfterOneMore(const std::filesystem::path& path) {
        {
            auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
            ModelledTable(file.OpenTable("Tracks"), 1).InsertOne();
            file.Commit();
        }
        return RowsOf(DatabaseFile::Open(path, OpenMode::ReadOnly).OpenTable("Tracks")).size();
    }

    TemporaryFolder folder_;
    std::filesystem::path path_ = folder_ / "awkward.mdb";
};

// Its names have one lock file each, and nothing tells one of the other.
TEST_F(AwkwardFiles, WithSeveralNamesAreRefused) {
    const std::string before = outside::ContentOf(path_);
    const auto other = folder_ / "other.mdb";
    ASSERT_NE(CreateHardLinkW(other.c_str(), path_.c_str(), nullptr), 0);
    ExpectRefused(ErrorKind::NotSupported, "2 names (hard links)");
    EXPECT_EQ(outside::ContentOf(path_), before);
    EXPECT_EQ(DatabaseFile::Open(path_, OpenMode::ReadOnly).TableNames().size(), 2U);
    ASSERT_NE(DeleteFileW(other.c_str()), 0);
    EXPECT_EQ(RowsAfterOneMore(path_), 1U);
}

TEST_F(AwkwardFiles, ThatAreWriteProtectedAreChangedOnlyWhereTheSystemLetsUs) {
    ASSERT_NE(SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_READONLY), 0);
    HANDLE const letIn =
        CreateFileW(path_.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (letIn == INVALID_HANDLE_VALUE) {
        ExpectRefused(ErrorKind::ReadOnly, "Permission denied");
        EXPECT_EQ(DatabaseFile::Open(path_, OpenMode::ReadOnly).TableNames().size(), 2U);
    } else {
        // Wine does with the super-user, Windows with nobody.
        CloseHandle(letIn);
        EXPECT_EQ(RowsAfterOneMore(path_), 1U);
    }
    EXPECT_NE(GetFileAttributesW(path_.c_str()) & FILE_ATTRIBUTE_READONLY, 0U);
    ASSERT_NE(SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_NORMAL), 0);
}

TEST_F(AwkwardFiles, ThatAreHiddenAreChangedAndStayHidden) {
    ASSERT_NE(SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_HIDDEN), 0);
    EXPECT_EQ(RowsAfterOneMore(path_), 1U);
    EXPECT_NE(GetFileAttributesW(path_.c_str()) & FILE_ATTRIBUTE_HIDDEN, 0U);
}

TEST_F(AwkwardFiles, ThatAnotherProgramKeepsToItselfAreInUse) {
    HANDLE const other = CreateFileW(path_.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                     OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(other, INVALID_HANDLE_VALUE);
    ExpectRefused(ErrorKind::InUse, "in use by another program");
    CloseHandle(other);
    EXPECT_EQ(RowsAfterOneMore(path_), 1U);
}

TEST_F(AwkwardFiles, MayLieDeeperThanTheSystemTakesUnmarked) {
    std::wstring folder = LR"(\\?\)" + folder_.Path().native();
    for (int depth = 0; depth < 2; ++depth) {
        folder += L'\\' + std::wstring(90, L'd');
        ASSERT_NE(CreateDirectoryW(folder.c_str(), nullptr), 0);
    }
    const std::filesystem::path deep =
        folder.substr(4) + L'\\' + std::wstring(90, L'f') + LR"( Öl 日本.mdb)";
    ASSERT_GT(deep.native().size(), std::size_t{MAX_PATH});
    DatabaseFile::Create(deep, BothTables());
    EXPECT_EQ(RowsAfterOneMore(deep), 1U);
}

TEST_F(AwkwardFiles, OnADriveThatIsNotThereAreNotFound) {
    std::string drive = "C:";
    while (((GetLogicalDrives() >> (drive[0] - 'A')) & 1U) != 0)
        ++drive[0];
    path_ = drive + "\\shelf\\jukebox.mdb";
    ExpectRefused(ErrorKind::NotFound, "No such file or directory");
}

}  // namespace

}  // namespace jet::storage::test
