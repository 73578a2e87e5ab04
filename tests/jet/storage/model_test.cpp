// Random changes against a model in memory, with an independent look at the file after each phase.
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>

#include "jet/storage/database_file.h"
#include "tests/jet/storage/random_rows.h"
#include "tests/jet/storage/schemas.h"
#include "tests/jet/storage/test_files.h"

namespace jet::storage::test {

namespace {

/// Changes every table of a file, commits, checks the file, reads it again.
void ChangeEverything(const std::filesystem::path& path, std::size_t phases, std::size_t changes,
                      bool strict) {
    const bool wasWhole = FaultsOf(path, strict).empty();
    for (std::uint32_t phase = 0; phase < phases; ++phase) {
        std::map<std::string, std::map<RowId, Row>> expected;
        {
            auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
            for (const std::string& name : file.TableNames()) {
                Table& table = file.OpenTable(name);
                if (table.ReadOnlyReason()) continue;
                ModelledTable model(table, 1000 + phase);
                const auto drift =
                    std::int64_t{table.RowCount()} - static_cast<std::int64_t>(model.Rows().size());
                model.Change(changes);
                EXPECT_EQ(RowsOf(table), model.Rows()) << name;
                EXPECT_EQ(std::int64_t{table.RowCount()} - drift,
                          static_cast<std::int64_t>(model.Rows().size()));
                expected[name] = model.Rows();
            }
            file.Commit();
        }
        if (wasWhole) {
            EXPECT_EQ(FaultsOf(path, strict), "");
        }
        auto file = DatabaseFile::Open(path, OpenMode::ReadOnly);
        for (const auto& [name, rows] : expected) {
            EXPECT_EQ(RowsOf(file.OpenTable(name)), rows) << name;
        }
    }
}

class RandomChanges : public testing::TestWithParam<std::filesystem::path> {};

/// Databases whose texts all come back as they were given: a text of fixed length is filled up.
std::vector<std::filesystem::path> ChangeableDatabases() {
    auto databases = DescribedDatabases();
    std::erase_if(databases, [](const auto& path) { return path.stem() == "fixedTextTestV2000"; });
    return databases;
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(RandomChanges);
INSTANTIATE_TEST_SUITE_P(Described, RandomChanges, testing::ValuesIn(ChangeableDatabases()),
                         [](const auto& instance) {
                             std::string name = instance.param.stem().string();
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST_P(RandomChanges, LeaveAWholeFileWithTheRightRows) {
    const TemporaryFolder folder;
    ChangeEverything(folder.CopyOf(GetParam()), 2, 150, false);
}

TEST(RandomChangesToANewFile, LeaveAWholeFileWithTheRightRows) {
    const TemporaryFolder folder;
    const auto path = folder / "new.mdb";
    DatabaseFile::Create(path, BothTables());
    EXPECT_EQ(FaultsOf(path, true), "");
    ChangeEverything(path, 6, 600, true);
}

TEST(DeletingAllRows, LeavesAWholeFileThatTakesRowsAgain) {
    const TemporaryFolder folder;
    const auto path = folder / "new.mdb";
    DatabaseFile::Create(path, BothTables());
    auto file = DatabaseFile::Open(path, OpenMode::ReadWrite);
    std::uintmax_t sizeBefore = 0;
    for (std::uint32_t round = 0; round < 3; ++round) {
        for (const std::string& name : file.TableNames()) {
            ModelledTable model(file.OpenTable(name), round);
            for (int i = 0; i < 300; ++i)
                model.InsertOne();
            EXPECT_EQ(RowsOf(file.OpenTable(name)), model.Rows());
            model.DeleteAll();
            EXPECT_EQ(RowsOf(file.OpenTable(name)).size(), 0U);
            EXPECT_EQ(file.OpenTable(name).RowCount(), 0U);
        }
        file.Commit();
        EXPECT_EQ(FaultsOf(path, true), "");
        const auto size = std::filesystem::file_size(path);
        if (sizeBefore != 0) {
            EXPECT_LT(size, sizeBefore * 3 / 2) << "room is not used again";
        }
        sizeBefore = size;
    }
}

}  // namespace

}  // namespace jet::storage::test
