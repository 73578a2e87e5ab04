// Whatever fails, and at whatever moment: the file is that of some commit.
#include <gtest/gtest.h>
#include <map>
#include <vector>

#include "jet/error.h"
#include "jet/storage/database_file.h"
#include "tests/jet/storage/faulty_files.h"
#include "tests/jet/storage/random_rows.h"
#include "tests/jet/storage/schemas.h"
#include "tests/jet/storage/test_files.h"
#include "tests/outside/density.h"

namespace jet::storage::test {

namespace {

using Fault = FaultyFileSystem::Fault;
using State = std::map<RowId, Row>;

constexpr std::size_t Commits = 3, ChangesPerCommit = 12, CheckedRounds = 7;

/// A database with some rows.
std::filesystem::path MakeDatabase(const TemporaryFolder& folder) {
    const auto path = folder / "start.mdb";
    DatabaseFile::Create(path, BothTables());
    auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
    ModelledTable model(file.OpenTable("Tracks"), 1);
    for (int i = 0; i < 120; ++i)
        model.InsertOne();
    return path;
}

State StateOf(const std::filesystem::path& path, OpenMode mode) {
    auto file = DatabaseFile::Open(path, mode);
    return RowsOf(file.OpenTable("Tracks"));
}

/// Changes rows and commits several times; the states committed so far and the one in the making
/// are kept in `states`, also when an error ends it.
void Work(const std::filesystem::path& path, const std::shared_ptr<FileSystem>& files,
          std::vector<State>& states) {
    auto file = DatabaseFile::Open(path, OpenMode::ReadWrite, files);
    Table& table = file.OpenTable("Tracks");
    ModelledTable model(table, 7);
    states.push_back(model.Rows());
    for (std::size_t i = 0; i < Commits; ++i) {
        model.Change(ChangesPerCommit);
        states.push_back(model.Rows());
        file.Commit();
    }
}

void ExpectStateOfSomeCommit(const std::filesystem::path& path, const std::vector<State>& states,
                             std::size_t moment) {
    const State readOnly = StateOf(path, OpenMode::ReadOnly);
    const State repaired = StateOf(path, OpenMode::ReadWrite);
    EXPECT_EQ(readOnly, repaired) << "operation " << moment;
    bool known = false;
    for (const State& state : states)
        known = known || state == repaired;
    EXPECT_TRUE(known) << "operation " << moment;
    // The checker is slow to start; equal rows in all other rounds make the difference small.
    if (moment % CheckedRounds == 0) {
        EXPECT_EQ(FaultsOf(path, true), "") << "operation " << moment;
    }
    EXPECT_FALSE(std::filesystem::exists(path.string() + ".journal"));
    EXPECT_FALSE(std::filesystem::exists(path.string() + ".journal-new"));
}

TEST(PowerLossAtAnyMoment, LeavesTheStateOfSomeCommit) {
    const TemporaryFolder folder;
    const auto start = MakeDatabase(folder);
    const auto path = folder / "work.mdb";
    const State before = StateOf(start, OpenMode::ReadOnly);
    bool reached = true;
    for (std::size_t moment = 0; reached; moment += outside::StepUnderSanitizers(4)) {
        for (std::uint32_t chance = 0; chance < 3; ++chance) {
            outside::CopyOver(start, path);
            const auto files = std::make_shared<FaultyFileSystem>(
                static_cast<std::uint32_t>(moment) * 10 + chance);
            files->FailAfter(moment, Fault::PowerLoss);
            std::vector<State> states{before};
            try {
                Work(path, files, states);
            } catch (const Error& error) {
                EXPECT_EQ(error.Kind(), ErrorKind::Io);
            }
            reached = files->HasFailed();
            files->LosePower();
            ExpectStateOfSomeCommit(path, states, moment);
            if (testing::Test::HasFailure()) return;
        }
    }
}

TEST(AFailedCommit, CanBeRepeated) {
    const TemporaryFolder folder;
    const auto start = MakeDatabase(folder);
    const auto path = folder / "work.mdb";
    bool reached = true;
    for (std::size_t moment = 0; reached; moment += outside::StepUnderSanitizers(3)) {
        outside::CopyOver(start, path);
        const auto files = std::make_shared<FaultyFileSystem>(1);
        auto file = DatabaseFile::Open(path, OpenMode::ReadWrite, files);
        ModelledTable model(file.OpenTable("Tracks"), 3);
        const State before = model.Rows();
        model.Change(ChangesPerCommit);
        const State first = model.Rows();
        files->FailAfter(moment, moment % 2 == 0 ? Fault::DiskFull : Fault::OneError);
        try {
            file.Commit();
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::Io);
        }
        reached = files->HasFailed();
        // What is on the disk at this moment is whole.
        const State onDisk = StateOf(path, OpenMode::ReadOnly);
        EXPECT_TRUE(onDisk == before || onDisk == first) << moment;

        files->Repair();
        model.Change(ChangesPerCommit);
        file.Commit();
        EXPECT_EQ(StateOf(path, OpenMode::ReadOnly), model.Rows()) << moment;
        EXPECT_EQ(FaultsOf(path, true), "") << moment;
        EXPECT_FALSE(std::filesystem::exists(path.string() + ".journal"));
    }
}

TEST(AFailedCommit, FollowedByPowerLossInTheNextKeepsAWholeFile) {
    const TemporaryFolder folder;
    const auto start = MakeDatabase(folder);
    const auto path = folder / "work.mdb";
    for (std::size_t first = 0; first < 12; first += 2) {
        bool reached = true;
        for (std::size_t second = 0; reached; second += outside::StepUnderSanitizers(4)) {
            outside::CopyOver(start, path);
            const auto files = std::make_shared<FaultyFileSystem>(
                static_cast<std::uint32_t>(first * 100 + second));
            std::vector<State> states;
            try {
                auto file = DatabaseFile::Open(path, OpenMode::ReadWrite, files);
                ModelledTable model(file.OpenTable("Tracks"), 3);
                states.push_back(model.Rows());
                model.Change(ChangesPerCommit);
                states.push_back(model.Rows());
                files->FailAfter(first, Fault::OneError);
                try {
                    file.Commit();
                } catch (const Error& error) {
                    EXPECT_EQ(error.Kind(), ErrorKind::Io);
                }
                model.Change(ChangesPerCommit);
                states.push_back(model.Rows());
                files->FailAfter(second, Fault::PowerLoss);
                file.Commit();
            } catch (const Error& error) {
                EXPECT_EQ(error.Kind(), ErrorKind::Io);
            }
            reached = files->HasFailed();
            files->LosePower();
            ExpectStateOfSomeCommit(path, states, first * 100 + second);
            if (testing::Test::HasFailure()) return;
        }
    }
}

}  // namespace

}  // namespace jet::storage::test
