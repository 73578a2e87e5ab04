// What a killed process leaves behind.
#include <chrono>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sys/wait.h>
#include <thread>
#include <vector>

#include "jet/storage/database_file.h"
#include "tests/jet/storage/random_rows.h"
#include "tests/jet/storage/schemas.h"
#include "tests/jet/storage/test_files.h"
#include "tests/outside/child_process.h"
#include "tests/outside/density.h"

namespace jet::storage::test {

namespace {

std::map<RowId, Row> RowsIn(const std::filesystem::path& path, OpenMode mode) {
    auto file = DatabaseFile::Open(path, mode);
    return RowsOf(file.OpenTable("Tracks"));
}

/// Inserts numbered rows until it is killed; every tenth row is followed by a commit.
[[noreturn]] void InsertUntilKilled(const std::filesystem::path& path) {
    auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
    Table& table = file.OpenTable("Tracks");
    std::vector<RowId> rows;
    for (std::int64_t number = 0;; ++number) {
        Row row(table.Definition().columns.size());
        row[1] = "Title " + std::to_string(number);
        row[4] = number % 1000;
        row[7] = std::string(static_cast<std::size_t>(number % 700), 'n');
        rows.push_back(table.Insert(row).row);
        const std::vector<FieldChange> changes{{2, std::string(40, 'a')}};
        table.Update(rows[rows.size() / 2], changes);
        if (number % 10 == 9) file.Commit();
    }
}

TEST(AKilledProcess, LeavesTheRowsOfItsLastCommitInOrder) {
    const TemporaryFolder folder;
    const std::vector<TableDefinition> tables{TracksTable()};
    std::size_t most = 0;
    for (std::size_t round = 0; round < 25; round += outside::StepUnderSanitizers(3)) {
        const auto path = folder / ("killed" + std::to_string(round) + ".mdb");
        DatabaseFile::Create(path, tables);
        outside::ChildProcess child([&path]() -> int { InsertUntilKilled(path); });
        std::this_thread::sleep_for(
            std::chrono::microseconds(3000 + static_cast<long>(round) * 7001));
        child.Kill();
        ASSERT_TRUE(WIFSIGNALED(child.Wait()));

        const auto readOnly = RowsIn(path, OpenMode::ReadOnly);
        const auto rows = RowsIn(path, OpenMode::ReadWrite);
        EXPECT_EQ(readOnly, rows);
        EXPECT_EQ(FaultsOf(path, true), "");
        EXPECT_EQ(rows.size() % 10, 0U);
        std::set<std::int64_t> numbers;
        for (const auto& [id, row] : rows)
            numbers.insert(std::get<std::int64_t>(row[0]));
        if (!numbers.empty()) {
            EXPECT_EQ(*numbers.begin(), 1);
            EXPECT_EQ(*numbers.rbegin(), static_cast<std::int64_t>(rows.size()));
        }
        most = std::max(most, rows.size());
        std::filesystem::remove(path);
    }
    EXPECT_GT(most, 0U) << "no round came as far as a commit";
}

}  // namespace

}  // namespace jet::storage::test
