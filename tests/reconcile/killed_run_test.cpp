#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "tests/outside/child_process.h"
#include "tests/outside/posix_test.h"
#include "tests/support/real_library.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

using ::testing::AnyOf;

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
        const auto numbersAfter = undisturbed.Rows(Numbers);
        ASSERT_GT(statements, 10U);

        for (std::size_t n = 1; n <= statements; n += step) {
            support::RealLibrary library;
            Prepare(library);
            library.CloseDatabase();
            EXPECT_TRUE(support::IsKilled([&] {
                library.OpenDatabase();
                library.Database().BeforeStatementNumber(n, [&](Connection& database) {
                    if (written == Written::Everything) database.Flush();
                    outside::KillThisProcess();
                });
                library.Reconcile();
            })) << n;

            library.OpenDatabase();
            ExpectNumbers(library, before, numbersAfter, n);
            library.Reconcile();
            EXPECT_EQ(library.State(), after) << "killed before statement " << n;
            EXPECT_EQ(library.run.counts.errors, 0U) << n;
            if (n % 5 == 0) {
                EXPECT_EQ(library.Faults(), "") << n;
            }
        }
    }

    /// Every row that was there has the number it had, or the one that it was to get.
    static void ExpectNumbers(support::RealLibrary& library, const std::vector<std::string>& before,
                              const std::vector<std::string>& after, std::size_t n) {
        for (const std::string& row : library.Rows(Numbers)) {
            if (row.find(R"(\c.mp3)") != std::string::npos) continue;
            if (row.find(R"(\New\)") != std::string::npos) continue;
            EXPECT_THAT(row, AnyOf(IsAmong(before), IsAmong(after)))
                << "killed before statement " << n;
        }
    }

    static testing::Matcher<std::string> IsAmong(const std::vector<std::string>& rows) {
        return testing::AnyOfArray(rows);
    }

    static constexpr const char* Numbers = "SELECT SoundFile, Track, CDJID FROM Tracks ORDER BY ID";
};

POSIX_TEST_F(KilledRunTest, LosesNoNumberWhereverItDiesWithAllChangesWritten) {
    KillAtEvery(1, Written::Everything);
}

POSIX_TEST_F(KilledRunTest, LosesNoNumberWhereverItDiesWithFewChangesWritten) {
    KillAtEvery(4, Written::WhateverThereIs);
}

}  // namespace
}  // namespace quillon
