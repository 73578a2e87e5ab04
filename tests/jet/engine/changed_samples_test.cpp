// Databases that another engine has made: their tables and indexes are changed, and they are
// compacted.
#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

#include "jet/check.h"
#include "jet/compact.h"
#include "jet/statement.h"
#include "tests/jet/engine/sample_database.h"
#include "tests/outside/shared_folder.h"
#include "tests/outside/structural_check.h"

namespace jet::testing {
namespace {

namespace fs = std::filesystem;

class ChangedSample : public ::testing::TestWithParam<fs::path> {
  protected:
    void SetUp() override {
        fs::copy_file(GetParam(), file_);
        fs::permissions(file_, fs::perms::owner_all);
    }

    /// Some are refused for writing as they are.
    bool Opens() const {
        try {
            Database::Open(file_, OpenMode::ReadWrite);
            return true;
        } catch (const Error&) {
            return false;
        }
    }

    /// All rows of all tables, by table. Their indexes come in the order of names, as they do in a
    /// packed copy.
    std::string Content() {
        Database database = Database::Open(file_, OpenMode::ReadOnly);
        std::string content;
        for (const TableDefinition& table : database.Tables()) {
            content += table.name + '\n';
            std::vector<std::string> statements = CreateStatements(table);
            std::ranges::sort(statements);
            for (const std::string& statement : statements)
                if (!statement.starts_with("CREATE INDEX [" + left_ + "]"))
                    content += statement + '\n';
            content += Rows(database, "SELECT * FROM " + SqlName(table.name)) + '\n';
        }
        return content;
    }

    std::string Faults() const {
        std::string faults;
        for (const CheckFault& fault : CheckFile(file_).faults)
            faults += fault.text + '\n';
        return faults + outside::StructuralFaults(file_);
    }

    std::string left_;  ///< the name of indexes that could not be dropped
    outside::TemporaryFolder folder_;
    fs::path file_ = folder_.Path() / "sample.mdb";
};

TEST_P(ChangedSample, TakesANewTableAndIndexesAndGivesThemBack) {
    if (!Opens()) return;
    const std::string before = Content();
    std::size_t indexed = 0;
    {
        Database database = Database::Open(file_, OpenMode::ReadWrite);
        database.Execute("CREATE TABLE [new table] (ID COUNTER PRIMARY KEY, Words MEMO)");
        database.Execute("INSERT INTO [new table] (Words) VALUES ('" + std::string(9000, 'w') +
                         "')");
        for (const TableDefinition& table : database.Tables()) {
            if (table.columns.front().type == ColumnType::Ole || table.indexes.size() > 30)
                continue;
            try {
                database.CreateIndex(table.name, {.name = "new index", .columns = {{.column = 0}}});
                ++indexed;
            } catch (const Error& error) {
                EXPECT_EQ(error.Kind(), ErrorKind::NotSupported) << table.name << error.what();
            }
        }
    }
    EXPECT_GT(indexed, 0U);
    EXPECT_EQ(Faults(), "");
    {
        Database database = Database::Open(file_, OpenMode::ReadWrite);
        for (const TableDefinition& table : database.Tables()) {
            for (const IndexDefinition& index : table.indexes) {
                if (index.name != "new index") continue;
                try {
                    database.DropIndex(table.name, index.name);
                } catch (const Error& error) {
                    EXPECT_NE(std::string(error.what()).find("relationship"), std::string::npos);
                    left_ = index.name;
                }
            }
        }
        database.DropTable("New Table");
    }
    EXPECT_EQ(Faults(), "");
    EXPECT_EQ(Content(), before);
}

TEST_P(ChangedSample, IsTheSameWhenItIsCompactedOrIsRefused) {
    if (!Opens()) return;
    const std::string before = Content();
    try {
        const Compacted done = CompactDatabase(file_);
        EXPECT_EQ(fs::file_size(done.kept), fs::file_size(GetParam()));
        EXPECT_EQ(Faults(), "");
    } catch (const Error& error) {
        EXPECT_EQ(error.Kind(), ErrorKind::NotSupported) << error.what();
        EXPECT_EQ(fs::file_size(file_), fs::file_size(GetParam()));
        EXPECT_EQ(std::distance(fs::directory_iterator(folder_.Path()), {}), 1);
    }
    EXPECT_EQ(Content(), before);
}

INSTANTIATE_TEST_SUITE_P(Samples, ChangedSample, ::testing::ValuesIn(outside::SampleDatabases()),
                         [](const auto& sample) {
                             std::string name = sample.param.stem().string();
                             std::erase_if(name, [](char c) { return !std::isalnum(c); });
                             return name;
                         });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(ChangedSample);

}  // namespace
}  // namespace jet::testing
