#include <csignal>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "database/marks.h"
#include "tests/support/real_library.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

/// A library in which a run moves, adds, renumbers and removes, killed before each of its database
/// statements in turn.
class KilledRunTest : public ::testing::Test {
  protected:
    /// What has reached the disk when the process dies.
    enum class Written { Everything, WhateverThereIs };

    static void Prepare(support::RealLibrary& library) {
        library.AddFile(R"(Blue\One\a.mp3)", 3);
        library.AddFile(R"(Blue\One\b.mp3)", 2);
        library.AddFile(R"(Green\One\a.mp3)", 1);
        library.AddFile(R"(Red\Old\a.mp3)", 1);
        library.Reconcile();
        library.Reconcile();
        // Numbers that a walk would not give tell whether the old ones are back.
        library.Database().Execute("UPDATE Tracks SET Track = Track + 10");
        library.Database().Execute("UPDATE Albums SET Tracks = Tracks + 10");
        library.Database().Flush();
        fs::remove_all(library.Music(R"(Red\Old)"));
        library.AddFile(R"(Blue\One\c.mp3)", 1);
        library.AddFile(R"(Yellow\New\a.mp3)", 1);
    }

    static void KillAtEvery(std::size_t step, Written written) {
        support::RealLibrary undisturbed;
        Prepare(undisturbed);
        const auto before = undisturbed.Rows(Numbers);
        undisturbed.Database().ForgetStatements();
        undisturbed.Reconcile();
        const std::size_t statements = undisturbed.Database().Count("");
        const auto after = undisturbed.State();
        ASSERT_GT(statements, 20U);

        for (std::size_t n = 1; n <= statements; n += step) {
            support::RealLibrary library;
            Prepare(library);
            library.CloseDatabase();
            EXPECT_TRUE(support::IsKilled([&] {
                library.OpenDatabase();
                library.Database().BeforeStatementNumber(n, [&](Connection& database) {
                    if (written == Written::Everything) database.Flush();
                    std::raise(SIGKILL);
                });
                library.Reconcile();
            })) << n;

            library.OpenDatabase();
            if (MarkSnapshotExists(library.run)) {
                RestoreMarks(library.run);
                ExpectOldNumbers(library, before, n);
            }
            library.Reconcile();
            EXPECT_EQ(library.State(), after) << "killed before statement " << n;
            EXPECT_EQ(library.run.counts.errors, 0U) << n;
            if (n % 5 == 0) {
                EXPECT_EQ(library.Faults(), "") << n;
            }
        }
    }

    /// Whether a process that works with the library dies before its nth statement, with all
    /// changes before that written.
    static bool IsKilledAt(support::RealLibrary& library, std::size_t n,
                           const std::function<void()>& work) {
        return support::IsKilled([&] {
            library.OpenDatabase();
            library.Database().BeforeStatementNumber(n, [](Connection& database) {
                database.Flush();
                std::raise(SIGKILL);
            });
            work();
        });
    }

    /// Every row that is still there has the number it had.
    static void ExpectOldNumbers(support::RealLibrary& library,
                                 const std::vector<std::string>& before, std::size_t n) {
        for (const std::string& row : library.Rows(Numbers)) {
            if (row.find(R"(\c.mp3)") != std::string::npos) continue;
            if (row.find(R"(\New\)") != std::string::npos) continue;
            EXPECT_THAT(before, ::testing::Contains(row)) << "killed before statement " << n;
        }
    }

    static constexpr const char* Numbers = "SELECT SoundFile, Track, CDJID FROM Tracks ORDER BY ID";
};

/// Gives back what a run killed in the middle of its walk has marked, and is killed in turn.
TEST_F(KilledRunTest, LosesNoNumberWhenGivingThemBackIsCutShort) {
    constexpr std::size_t InTheWalk = 25;
    for (std::size_t n = 1;; n += 2) {
        support::RealLibrary library;
        Prepare(library);
        const auto before = library.Rows(Numbers);
        library.CloseDatabase();
        EXPECT_TRUE(IsKilledAt(library, InTheWalk, [&] { library.Reconcile(); }));
        const bool killedAgain = IsKilledAt(library, n, [&] { RestoreMarks(library.run); });

        library.OpenDatabase();
        RestoreMarks(library.run);
        ExpectOldNumbers(library, before, n);
        if (!killedAgain) break;
    }
}

TEST_F(KilledRunTest, LosesNoNumberWhereverItDiesWithAllChangesWritten) {
    KillAtEvery(1, Written::Everything);
}

TEST_F(KilledRunTest, LosesNoNumberWhereverItDiesWithFewChangesWritten) {
    KillAtEvery(4, Written::WhateverThereIs);
}

}  // namespace
}  // namespace quillon
