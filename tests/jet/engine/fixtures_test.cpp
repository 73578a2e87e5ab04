#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>

#include "jet/engine/decimal_text.h"
#include "jet/storage/database_file.h"
#include "tests/jet/engine/sample_database.h"
#include "tests/outside/shared_folder.h"

namespace jet::testing {

namespace {

/// Numbers of more than 15 digits lose the rest in memory; everything else is exact.
bool SameValue(const Value& seen, const Value& stored) {
    const auto* decimal = std::get_if<Decimal>(&stored);
    if (const auto* other = std::get_if<Decimal>(&seen); decimal && other) {
        const double a = engine::DecimalToReal(*other), b = engine::DecimalToReal(*decimal);
        return std::abs(a - b) <= std::abs(b) * 1e-14;
    }
    return seen == stored;
}

class ForeignDatabase : public ::testing::TestWithParam<std::filesystem::path> {};

TEST_P(ForeignDatabase, ShowsWhatIsStored) {
    std::vector<std::pair<std::string, std::vector<storage::Row>>> tables;
    try {
        storage::DatabaseFile file = storage::DatabaseFile::Open(GetParam(), OpenMode::ReadOnly);
        for (const std::string& name : file.TableNames()) {
            tables.emplace_back(name, std::vector<storage::Row>());
            file.OpenTable(name).Scan([&](storage::RowId, storage::Row&& row) {
                tables.back().second.push_back(std::move(row));
            });
        }
    } catch (const Error& refused) {
        EXPECT_THROW(Database::Open(GetParam(), OpenMode::ReadOnly), Error) << refused.what();
        return;
    }
    Database database = Database::Open(GetParam(), OpenMode::ReadOnly);
    for (const auto& [name, stored] : tables) {
        const auto rows = database.OpenTable(name);
        for (const storage::Row& row : stored) {
            ASSERT_FALSE(rows->IsEof()) << name;
            ASSERT_EQ(rows->FieldCount(), row.size());
            for (std::size_t i = 0; i < row.size(); ++i)
                ASSERT_TRUE(SameValue(rows->Get(i), row[i]))
                    << name << '.' << rows->FieldName(i) << ": " << Show(rows->Get(i))
                    << ", stored: " << Show(row[i]);
            rows->MoveNext();
        }
        EXPECT_TRUE(rows->IsEof()) << name;
    }
}

INSTANTIATE_TEST_SUITE_P(Fixtures, ForeignDatabase, ::testing::ValuesIn(outside::SampleDatabases()),
                         [](const auto& tested) {
                             std::string name = tested.param.stem().string();
                             for (char& letter : name)
                                 if (!std::isalnum(static_cast<unsigned char>(letter)))
                                     letter = '_';
                             return name + "_" + std::to_string(tested.index);
                         });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(ForeignDatabase);

}  // namespace

}  // namespace jet::testing
