// A file that was found whole is not looked over again as long as it has the same content.
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "jet/storage/database_file.h"
#include "jet/storage/file_system.h"
#include "jet/storage/format/page.h"
#include "tests/jet/storage/schemas.h"
#include "tests/jet/storage/test_files.h"

namespace jet::storage::test {

namespace {

namespace fs = std::filesystem;

class KnownWhole : public testing::Test {
  protected:
    KnownWhole() {
        DatabaseFile::Create(path_, BothTables());
        // Pages that nothing uses make it large enough to be remembered.
        fs::resize_file(path_, 300 * PageSize);
        forgets_ = !RealFileSystem()->Open(path_, FileAccess::Read)->KeepsNotes();
    }

    /// Opens the file; whether it was looked over.
    bool IsLookedOver(bool isWhole = true, OpenMode mode = OpenMode::ReadWrite) const {
        bool isLookedOver = false;
        DatabaseFile::Open(path_, mode, {.needs = {}, .inspect = [&](PageStore&) {
                                             isLookedOver = true;
                                             return isWhole;
                                         }});
        return isLookedOver;
    }

    void ChangeByte(std::size_t at) const {
        std::string content = ReadFile(path_);
        content[at] = static_cast<char>(content[at] ^ 1);
        WriteFile(path_, content);
    }

    TemporaryFolder folder_;
    fs::path path_ = folder_.Path() / "x.mdb";
    /// Where the file system keeps no remarks, files are looked over each time.
    bool forgets_ = false;
};

TEST_F(KnownWhole, IsLookedOverOnceWithTheSameContent) {
    EXPECT_TRUE(IsLookedOver());
    EXPECT_EQ(IsLookedOver(), forgets_);
}

TEST_F(KnownWhole, IsLookedOverWhenASingleBitHasChanged) {
    IsLookedOver();
    ChangeByte(299 * PageSize + 17);
    EXPECT_TRUE(IsLookedOver());
    ChangeByte(299 * PageSize + 17);
    EXPECT_TRUE(IsLookedOver()) << "it is the last look that counts";
    EXPECT_EQ(IsLookedOver(), forgets_);
}

TEST_F(KnownWhole, IsLookedOverAgainWhenPagesHaveBeenAdded) {
    IsLookedOver();
    fs::resize_file(path_, 301 * PageSize);
    EXPECT_TRUE(IsLookedOver());
}

TEST_F(KnownWhole, WithAFaultIsLookedOverEachTime) {
    EXPECT_TRUE(IsLookedOver(false));
    EXPECT_TRUE(IsLookedOver(false));
}

TEST_F(KnownWhole, OpenedInMemoryLeavesNoRemarkAndTrustsOne) {
    EXPECT_TRUE(IsLookedOver(true, OpenMode::InMemory));
    EXPECT_TRUE(IsLookedOver());
    EXPECT_EQ(IsLookedOver(true, OpenMode::InMemory), forgets_);
}

TEST_F(KnownWhole, OfAFewPagesIsLookedOverEachTime) {
    fs::resize_file(path_, 200 * PageSize);
    EXPECT_TRUE(IsLookedOver());
    EXPECT_TRUE(IsLookedOver());
}

}  // namespace

}  // namespace jet::storage::test
