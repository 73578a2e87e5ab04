// Every test database reads as another reader has read it.
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "jet/storage/database_file.h"
#include "tests/jet/storage/described_rows.h"
#include "tests/jet/storage/test_files.h"

namespace jet::storage::test {

namespace {

class EveryDatabase : public testing::TestWithParam<std::filesystem::path> {};

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(EveryDatabase);
INSTANTIATE_TEST_SUITE_P(Described, EveryDatabase, testing::ValuesIn(DescribedDatabases()),
                         [](const auto& instance) {
                             std::string name = instance.param.stem().string();
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST_P(EveryDatabase, ReadsAsDescribed) {
    auto file = DatabaseFile::Open(GetParam(), OpenMode::ReadOnly);
    std::map<std::string, std::vector<DescribedRow>> described;
    for (auto& row : ReadDescribedRows(GetParam()))
        described[row.table].push_back(std::move(row));
    std::size_t differences = 0;
    for (const std::string& name : file.TableNames()) {
        const Table& table = file.OpenTable(name);
        const auto& columns = table.Definition().columns;
        const auto& rows = described[name];
        std::size_t next = 0;
        table.Scan([&](RowId id, Row&& row) {
            ASSERT_LT(next, rows.size());
            const DescribedRow& expected = rows[next++];
            ASSERT_EQ(expected.fields.size(), columns.size());
            EXPECT_EQ(table.Read(id), row);
            for (std::size_t i = 0; i < columns.size(); ++i) {
                EXPECT_EQ(columns[i].name, expected.fields[i].first);
                if (Matches(row[i], expected.fields[i].second)) continue;
                if (++differences > 10) continue;
                ADD_FAILURE() << name << "." << columns[i].name << ": " << Describe(row[i]).text
                              << " is not " << expected.fields[i].second.text;
            }
        });
        EXPECT_EQ(next, rows.size());
        described.erase(name);
    }
    EXPECT_TRUE(described.empty());
    EXPECT_EQ(differences, 0U);
}

}  // namespace

}  // namespace jet::storage::test
