#include "app/report/report_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "app/report/report_names.h"
#include "jet/database.h"
#include "jukebox/jukebox_database.h"
#include "tests/app/report_fixture.h"
#include "tests/outside/temporary_folder.h"
#include "tests/support/fakes.h"

namespace quillon {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(ReportNames, AreThoseInTheDatabase) {
    const outside::TemporaryFolder folder;
    CreateJukeboxDatabase(folder.Path() / "cdj.mdb");
    {
        jet::Database database =
            jet::Database::Open(folder.Path() / "cdj.mdb", jet::OpenMode::ReadWrite);
        database.Execute("INSERT INTO Tracks (Title, Artist) VALUES ('Dawn', 'Alder')");
    }
    ReportNames names(folder.Path() / "cdj.mdb");
    EXPECT_EQ(names.Of("Tracks", 1).artist, "Alder");
    EXPECT_EQ(names.Of("Tracks", 1).title, "Dawn");
    EXPECT_EQ(names.Of("Tracks", 2).title, "");
    EXPECT_EQ(names.Of("Nothing", 1).title, "");
    EXPECT_EQ(ReportNames(folder.Path() / "none.mdb").Of("Tracks", 1).title, "");
}

class ReportFile : public Report {
  protected:
    using Run = quillon::Run;  // not the one of ::testing::Test

    std::string Written(const std::string& name) const { return folder.Content("Reports/" + name); }
    void WriteIt() {
        WriteReport(world.host, folder.Path(), [this] { return Content(); }, facts);
    }

    outside::TemporaryFolder folder;
    fakes::FakeWorld world;
};

TEST_F(ReportFile, IsWrittenUnderTheStampAndAsTheLastOne) {
    Add(AddedTrack(1, "Alder", "Dawn"));
    End();
    WriteIt();
    EXPECT_EQ(Written(std::string(Stamp) + ".html"), Page());
    EXPECT_EQ(Written("last.html"), Page());
    EXPECT_THAT(world.host.log, IsEmpty());
}

TEST_F(ReportFile, IsNotWrittenOfARunThatDidNothing) {
    End();
    WriteIt();
    EXPECT_FALSE(std::filesystem::exists(ReportsFolder(folder.Path())));
}

TEST_F(ReportFile, ThatCannotBeWrittenIsALineInTheLog) {
    folder.MakeFile("Reports", "a file in its place");
    AddError("oh");
    End();
    WriteIt();
    ASSERT_EQ(world.host.log.size(), 1U);
    EXPECT_THAT(world.host.log[0], HasSubstr("The report of this run could not be written to "));
    EXPECT_EQ(world.run.counts.errors, 0U);
}

}  // namespace
}  // namespace quillon
