#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "id3/difference_table.h"
#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* TableFile = R"(C:\HomeSeer\data\Quillon\QuillonReconcile.csv)";

class OutputReconcileTableTest : public ::testing::Test {
  protected:
    OutputReconcileTableTest() { library.files.AddFolder(library.host.appPath); }

    void AddRow(const std::string& values) {
        library.Execute(
            "INSERT INTO SpinnerID3Differences (UpdateTime, Field, ID3Value, DBValue, Artist, "
            "Album, Track) VALUES (" +
            values + ")");
    }
    std::string Written() {
        OutputReconcileTable(library.run);
        return library.files.Content(TableFile);
    }

    support::TestLibrary library;
};

TEST_F(OutputReconcileTableTest, WritesALineARowInTheTablesOrderOfColumns) {
    AddRow("#2026-11-15 05:38:55#, 'Song', 'Dusk', 'Dawn', 'Alder', 'First Light', 'Dawn'");
    AddRow("#2026-11-15 05:38:55#, 'Artist', 'b', 'Alder', 'Alder', 'First Light', 'Dawn'");
    EXPECT_EQ(Written(),
              "11/15/2026 5:38:55 AM,Song,Dusk,Dawn,Alder,First Light,Dawn,\r\n"
              "11/15/2026 5:38:55 AM,Artist,b,Alder,Alder,First Light,Dawn,\r\n");
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(OutputReconcileTableTest, NeitherQuotesNorEscapes) {
    AddRow("Null, 'Song', 'a, \"b\"', '', Null, 'x''s', 'y'");
    EXPECT_EQ(Written(), ",Song,a, \"b\",,,x's,y,\r\n");
}

TEST_F(OutputReconcileTableTest, WritesAnEmptyFileWithoutDifferences) {
    EXPECT_EQ(Written(), "");
}

TEST_F(OutputReconcileTableTest, ReplacesTheFileOfAnEarlierRun) {
    library.files.AddFile(TableFile, "old");
    EXPECT_EQ(Written(), "");
}

TEST_F(OutputReconcileTableTest, MakesTheFoldersThatAreMissingAlone) {
    Written();
    EXPECT_THAT(library.calls.Of({"CreateFolder"}),
                ElementsAre(R"(CreateFolder C:\HomeSeer\Data)",
                            R"(CreateFolder C:\HomeSeer\Data\Quillon)"));
    library.calls.Forget();
    Written();
    EXPECT_THAT(library.calls.Of({"CreateFolder"}), IsEmpty());
}

TEST_F(OutputReconcileTableTest, LogsAFailureAndLeavesTheOldFile) {
    library.files.AddFile(TableFile, "old");
    AddRow("Null, 'Song', 'a', 'b', 'c', 'd', 'e'");
    library.Database().Refuse("SELECT * FROM SpinnerID3Differences");
    EXPECT_EQ(Written(), "old");
    EXPECT_THAT(library.host.log, ElementsAre("Quillon: OutputReconcileTable Line 0 refused"));
}

}  // namespace
}  // namespace quillon
