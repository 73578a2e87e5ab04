// Who else has the database open.
#include "jet/lock.h"

#include <cctype>
#include <gtest/gtest.h>
#include <string>

#include "jet/error.h"
#include "jet/storage/database_file.h"
#include "jet/storage/system_file.h"
#include "tests/jet/storage/schemas.h"
#include "tests/jet/storage/test_files.h"

namespace jet::storage::test {

namespace {

std::string Entry(std::string machine, std::string user) {
    machine.resize(32);
    user.resize(32);
    return machine + user;
}

std::string ThisMachine() {
    return MachineName().substr(0, 31);
}

class Locks : public testing::Test {
  protected:
    Locks() { DatabaseFile::Create(path_, BothTables()); }

    void ExpectInUse(const std::string& words) {
        try {
            DatabaseFile::Open(path_, OpenMode::ReadWrite);
            ADD_FAILURE() << "opened";
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::InUse);
            const std::string what = error.what();
            EXPECT_NE(what.find(words), std::string::npos) << what;
            EXPECT_NE(what.find(path_.string()), std::string::npos) << what;
            EXPECT_EQ(LookAtLock(path_).kind, LockState::Kind::InUse);
            EXPECT_EQ(LookAtLock(path_).objection, what);
        }
    }

    TemporaryFolder folder_;
    std::filesystem::path path_ = folder_ / "shared.mdb";
    std::filesystem::path lock_ = folder_ / "shared.ldb";
};

TEST_F(Locks, AreTakenForWritingAndGivenUpAtTheEnd) {
    {
        auto file = DatabaseFile::Open(path_, OpenMode::ReadWrite);
        EXPECT_EQ(outside::ContentOf(lock_), Entry(ThisMachine(), "Quillon"));
        ExpectInUse("is in use by " + ThisMachine());
        // Moving the object keeps the lock.
        const auto moved = std::move(file);
        ExpectInUse("is in use by");
    }
    EXPECT_FALSE(std::filesystem::exists(lock_));
    DatabaseFile::Open(path_, OpenMode::ReadWrite);
}

TEST_F(Locks, AreNeitherTakenNorHeededForReading) {
    WriteFile(lock_, Entry("OFFICE", "Admin"));
    auto reader = DatabaseFile::Open(path_, OpenMode::ReadOnly);
    EXPECT_EQ(reader.TableNames().size(), 2U);
    EXPECT_EQ(outside::ContentOf(lock_), Entry("OFFICE", "Admin"));
    std::filesystem::remove(lock_);
    auto another = DatabaseFile::Open(path_, OpenMode::ReadOnly);
    EXPECT_FALSE(std::filesystem::exists(lock_));
}

TEST_F(Locks, OfOtherMachinesAreRespectedEvenWithoutALockToTell) {
    WriteFile(lock_,
              Entry("OFFICE", "Admin") + Entry("KITCHEN", "Admin") + Entry("OFFICE", "Admin"));
    ExpectInUse("OFFICE, KITCHEN. If no program has it open, delete " + lock_.string());
    EXPECT_TRUE(std::filesystem::exists(lock_));
}

TEST_F(Locks, OfAnotherProgramOnThisMachineAreRespected) {
    WriteFile(lock_, Entry(ThisMachine(), "Admin"));
    ExpectInUse("seems to be in use by " + ThisMachine());
}

TEST_F(Locks, LeftByACrashOnThisMachineAreTakenOver) {
    WriteFile(lock_, Entry(ThisMachine(), "Quillon"));
    {
        auto file = DatabaseFile::Open(path_, OpenMode::ReadWrite);
        EXPECT_EQ(outside::ContentOf(lock_).size(), 64U);
    }
    EXPECT_FALSE(std::filesystem::exists(lock_));
}

TEST_F(Locks, LeftByACrashOnThisMachineAreTakenOverWhateverTheCaseOfItsName) {
    std::string capitals = ThisMachine(), small = ThisMachine();
    for (char& letter : capitals)
        letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    for (char& letter : small)
        letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    for (const std::string& name : {capitals, small}) {
        WriteFile(lock_, Entry(name, "Quillon"));
        DatabaseFile::Open(path_, OpenMode::ReadWrite);
        EXPECT_FALSE(std::filesystem::exists(lock_));
    }
    WriteFile(lock_, Entry(capitals + "2", "Quillon"));
    ExpectInUse(capitals + "2");
}

TEST_F(Locks, LeftHalfWrittenByACrashOnThisMachineAreTakenOver) {
    for (const std::size_t size : {1U, 32U, 63U}) {
        WriteFile(lock_, Entry(ThisMachine(), "Quillon").substr(0, size));
        DatabaseFile::Open(path_, OpenMode::ReadWrite);
        EXPECT_FALSE(std::filesystem::exists(lock_));
    }
    WriteFile(lock_, Entry("OFFICE", "Admin").substr(0, 32));
    ExpectInUse("OFFICE");
}

TEST_F(Locks, HeldByAnotherProcessNameItsMachines) {
    WriteFile(lock_, Entry("STUDIO", "Admin"));
    const Descriptor other = OpenPlainFile(lock_, Opening::ReadWrite, "open");
    ASSERT_TRUE(other.IsOpen());
    ASSERT_EQ(TakeLock(other, {0x10000001, 1}, lock_), LockResult::Taken);
    ExpectInUse("is in use by STUDIO");
    EXPECT_EQ(outside::ContentOf(lock_), Entry("STUDIO", "Admin"));
}

TEST_F(Locks, AreLookedAtWithoutBeingTouched) {
    EXPECT_EQ(LookAtLock(path_).kind, LockState::Kind::Free);
    EXPECT_FALSE(std::filesystem::exists(lock_));
    WriteFile(lock_, "");
    EXPECT_EQ(LookAtLock(path_).kind, LockState::Kind::Free);
    WriteFile(lock_, Entry(ThisMachine(), "Quillon"));
    EXPECT_EQ(LookAtLock(path_).kind, LockState::Kind::LeftBehind);
    EXPECT_EQ(LookAtLock(path_).objection, "");
    EXPECT_EQ(outside::ContentOf(lock_), Entry(ThisMachine(), "Quillon"));
}

TEST_F(Locks, AreNotLeftBehindByAFileThatCannotBeOpened) {
    WriteFile(path_, outside::ContentOf(path_).substr(0, 8 * PageSize));
    EXPECT_THROW(DatabaseFile::Open(path_, OpenMode::ReadWrite), Error);
    EXPECT_FALSE(std::filesystem::exists(lock_));
}

}  // namespace

}  // namespace jet::storage::test
