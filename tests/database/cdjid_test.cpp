#include "database/cdjid.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

class GetNextCDJIDTest : public ::testing::Test {
  protected:
    void AddAlbum(std::string_view cdjid) { library.AddAlbumRow(cdjid, "Artist", "Title", 1); }

    support::TestLibrary library;
};

TEST_F(GetNextCDJIDTest, StartsAtOneInAnEmptyTable) {
    EXPECT_EQ(GetNextCDJID(library.run), "252E671073EC0001");
}

TEST_F(GetNextCDJIDTest, FollowsTheHighestInUse) {
    AddAlbum("252E671073EC0041");
    AddAlbum("252E671073EC0007");
    EXPECT_EQ(GetNextCDJID(library.run), "252E671073EC0042");
}

TEST_F(GetNextCDJIDTest, WrapsAfter9999ToZero) {
    AddAlbum("252E671073EC9999");
    EXPECT_EQ(GetNextCDJID(library.run), "252E671073EC0000");
}

TEST_F(GetNextCDJIDTest, WarnsOfAnEndingThatIsNoNumberAndGoesOnAt9001) {
    AddAlbum("252E671073EC00A1");
    EXPECT_EQ(GetNextCDJID(library.run), "252E671073EC9001");
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Spinner Refresh detected album sequence number without a "
                            "numeric ending 252E671073EC00A1"));
}

TEST_F(GetNextCDJIDTest, DoesNotCareForOtherPrefixes) {
    AddAlbum("C70A5B0F");
    AddAlbum("FFFFFFFFFFFF9000");
    AddAlbum("252E671073ED0500");
    EXPECT_EQ(GetNextCDJID(library.run), "252E671073EC0001");
    AddAlbum("252E671073EC0002");
    EXPECT_EQ(GetNextCDJID(library.run), "252E671073EC0003");
}

TEST_F(GetNextCDJIDTest, LogsAFailureAndGivesNothing) {
    library.Database().Refuse("Scan Albums");
    EXPECT_EQ(GetNextCDJID(library.run), "");
    EXPECT_THAT(library.host.log, ElementsAre(StartsWith("Quillon: GetNextCDJID Error: Line 0 ")));
}

TEST_F(GetNextCDJIDTest, HandsTheSameOutAgainUntilItIsTaken) {
    CdjidSequence sequence(library.run);
    EXPECT_EQ(sequence.GetNextCDJID(), "252E671073EC0001");
    EXPECT_EQ(sequence.GetNextCDJID(), "252E671073EC0001");
    sequence.Taken("252E671073EC0001");
    EXPECT_EQ(sequence.GetNextCDJID(), "252E671073EC0002");
}

TEST_F(GetNextCDJIDTest, AsksTheDatabaseOnceForManyAlbums) {
    CdjidSequence sequence(library.run);
    for (int album = 0; album < 12; ++album)
        sequence.Taken(sequence.GetNextCDJID());
    EXPECT_EQ(sequence.GetNextCDJID(), "252E671073EC0013");
    EXPECT_EQ(library.Database().Count("Scan Albums"), 1U);
}

// Albums that share an identifier are removed with their play counts.
TEST_F(GetNextCDJIDTest, NeverGivesOneThatIsTakenButTheLowestFreeOne) {
    for (const char* const cdjid : {"252E671073EC9999", "252e671073ec0000", "252E671073EC0002"})
        AddAlbum(cdjid);
    CdjidSequence sequence(library.run);
    EXPECT_EQ(sequence.GetNextCDJID(), "252E671073EC0001");
    EXPECT_EQ(sequence.GetNextCDJID(), "252E671073EC0001");
    sequence.Taken("252E671073EC0001");
    EXPECT_EQ(sequence.GetNextCDJID(), "252E671073EC0003");
}

TEST_F(GetNextCDJIDTest, GivesNoneTwiceAfterAnEndingThatIsNoNumber) {
    AddAlbum("252E671073EC9ABC");
    AddAlbum("252E671073EC9001");
    EXPECT_EQ(GetNextCDJID(library.run), "252E671073EC0000");
}

TEST_F(GetNextCDJIDTest, GivesNoneWhenAllAreTaken) {
    AddAlbum("252E671073EC9999");
    CdjidSequence sequence(library.run);
    for (int number = 0; number < 9999; ++number)
        sequence.Taken(sequence.GetNextCDJID());
    EXPECT_EQ(sequence.GetNextCDJID(R"(Alder\Dawn)"), "");
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: GetNextCDJID Error: Line 0 All identifiers from "
                            "252E671073EC0000 to 252E671073EC9999 are in use, so the album is left "
                            R"(out (Alder\Dawn))"));
}

}  // namespace
}  // namespace quillon
