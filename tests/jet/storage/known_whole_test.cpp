// A file that was found whole is not looked over again as long as it has the same content.
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <string>

#include "jet/error.h"
#include "jet/storage/database_file.h"
#include "jet/storage/file_system.h"
#include "jet/storage/format/page.h"
#include "jet/storage/format/page_store.h"
#include "tests/jet/engine/counting_files.h"
#include "tests/jet/storage/faulty_files.h"
#include "tests/jet/storage/random_rows.h"
#include "tests/jet/storage/schemas.h"
#include "tests/jet/storage/test_files.h"
#include "tests/outside/density.h"

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

    /// A row more.
    void ChangeRows() const {
        const std::string before = outside::ContentOf(path_);
        {
            auto file = DatabaseFile::Open(path_, OpenMode::ReadWrite, Finds(true));
            ModelledTable(file.OpenTable("Tracks"), 1).InsertOne();
        }
        EXPECT_NE(outside::ContentOf(path_), before);
    }

    /// A look at every page, and what it says.
    static OpenConditions Finds(bool isWhole) {
        return {.needs = {}, .inspect = [isWhole](PageStore& pages) {
                    Page content;
                    for (PageNumber page = 0; page < pages.PageCount(); ++page)
                        content = *pages.Read(page);
                    return isWhole;
                }};
    }

    void ChangeByte(std::size_t at) const {
        std::string content = outside::ContentOf(path_);
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

TEST_F(KnownWhole, IsStillKnownAfterCommits) {
    ChangeRows();
    EXPECT_EQ(IsLookedOver(), forgets_) << "after the run that looked it over";
    ChangeRows();
    EXPECT_EQ(IsLookedOver(), forgets_) << "after one that did not";
    ChangeByte(299 * PageSize + 17);
    EXPECT_TRUE(IsLookedOver());
}

TEST_F(KnownWhole, CommitsReadNothingForTheRemark) {
    const auto readsOfCommit = [this](bool isWhole) {
        const auto files = std::make_shared<CountingFiles>();
        auto file = DatabaseFile::Open(path_, OpenMode::ReadWrite, files, Finds(isWhole));
        ModelledTable(file.OpenTable("Tracks"), 2).InsertOne();
        const std::size_t before = files->Reads();
        file.Commit();
        return files->Reads() - before;
    };
    const std::string start = outside::ContentOf(path_);
    const std::size_t reads = readsOfCommit(false);
    WriteFile(path_, start);
    EXPECT_EQ(readsOfCommit(true), reads);
}

TEST_F(KnownWhole, GrownFromAFewPagesByCommits) {
    fs::resize_file(path_, 200 * PageSize);
    {
        auto file = DatabaseFile::Open(path_, OpenMode::ReadWrite, Finds(true));
        ModelledTable rows(file.OpenTable("Tracks"), 1);
        while (fs::file_size(path_) < 260 * PageSize) {
            for (int i = 0; i < 100; ++i)
                rows.InsertOne();
            file.Commit();
        }
    }
    EXPECT_EQ(IsLookedOver(), forgets_);
}

TEST_F(KnownWhole, WithAFaultStaysUnknownAfterCommits) {
    {
        auto file = DatabaseFile::Open(path_, OpenMode::ReadWrite, Finds(false));
        ModelledTable(file.OpenTable("Tracks"), 1).InsertOne();
    }
    EXPECT_TRUE(IsLookedOver());
}

TEST_F(KnownWhole, AfterPowerLossAtAnyMomentOnlyWithTheContentOfACommit) {
    const std::string start = outside::ContentOf(path_);
    std::size_t known = 0;
    bool reached = true;
    for (std::size_t moment = 0; reached; moment += outside::StepUnderSanitizers(3)) {
        WriteFile(path_, start);
        ASSERT_TRUE(moment > 0 || IsLookedOver());
        const auto files =
            std::make_shared<FaultyFileSystem>(static_cast<std::uint32_t>(moment) + 1);
        files->FailAfter(moment, FaultyFileSystem::Fault::PowerLoss);
        std::set<std::string> commits{start};
        try {
            auto file = DatabaseFile::Open(path_, OpenMode::ReadWrite, files, Finds(true));
            ModelledTable(file.OpenTable("Tracks"), 1).InsertOne();
            file.Commit();
            commits.insert(outside::ContentOf(path_));
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::Io);
        }
        reached = files->HasFailed();
        files->LosePower();
        const std::string left = outside::ContentOf(path_);
        if (IsLookedOver()) continue;
        ++known;
        EXPECT_TRUE(commits.contains(left)) << "operation " << moment;
    }
    EXPECT_EQ(known > 0, !forgets_);
}

}  // namespace

}  // namespace jet::storage::test
