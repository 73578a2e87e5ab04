#include <gmock/gmock.h>

#include "playlists/create.h"
#include "tests/playlists/create_fixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST_F(CreateTest, ReadsAndMakesNoGenresWhenAbortedBefore) {
    AddSpinner("Ann", "One", "Folk");
    run().AbortRequested = true;
    Create();
    EXPECT_THAT(Lists(), IsEmpty());
}

/// Abort is looked for where reading and the genre lists begin, and nowhere else.
TEST_F(CreateTest, FinishesTheArtistListsWhenAbortedWhileReading) {
    AddSpinner("Ann", "One", "Folk");
    library.window.PressAbortWhen(
        [](const FormState& state) { return state.aItem.ends_with(" - Ann"); });
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Ann.pla"));
}

TEST_F(CreateTest, MakesNoListsOfSongsThatTheDatabaseCannotSave) {
    AddSpinner("Ann", "One", "Folk");
    Create();
    const auto before = Lists();
    AddAlbum("C9", "Zoe", {"Nine"});
    AddSpinner("Zoe", "Nine", "Jazz");
    NextRun();
    library.Database().Refuse("Flush");
    Create();
    EXPECT_EQ(Lists(), before);
    EXPECT_THAT(library.host.log, ElementsAre(HasSubstr("Generate New Playlists Error:")));
    library.Database().Allow("Flush");
    Create();
    EXPECT_THAT(Lists(), SizeIs(before.size() + 2));
}

TEST_F(CreateTest, CostsOneListThatCannotBeWritten) {
    AddSpinner("Ann", "One", "Folk");
    AddSpinner("Bob", "Four", "Jazz");
    library.calls.Refuse(R"(CreateText D:\Lists\Jazz.pla)", FailureNumber::DiskFull, "full");
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Ann.pla", "Bob.pla", "Folk.pla"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Generate New Playlists Error: Line 0 Disk full: full "
                            R"((D:\Lists\Jazz.pla))"));
}

TEST_F(CreateTest, CostsOneListThatCannotGetItsName) {
    AddSpinner("Ann", "One", "Folk");
    AddSpinner("Bob", "Four", "Jazz");
    library.calls.Refuse(R"(Name D:\Lists\Jazz.pla)", FailureNumber::PermissionDenied,
                         R"(D:\Lists\Jazz.pla)");
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Ann.pla", "Bob.pla", "Folk.pla"));
    EXPECT_EQ(library.run.counts.playlistsWritten, 3);
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Generate New Playlists Error: Line 0 Permission denied: "
                            R"(D:\Lists\Jazz.pla)"));
}

/// As with a full disk, which would have a line for each of thousands.
TEST_F(CreateTest, EndsBehindTenListsInARowThatCannotBeMade) {
    for (int i = 0; i < 12; ++i) {
        const std::string name = "Artist" + std::to_string(10 + i);
        AddAlbum("C" + std::to_string(i), name, {"Song of " + name});
        AddSpinner(name, "Song of " + name, "Folk");
        library.calls.Refuse(R"(CreateText D:\Lists\)" + name + ".pla", FailureNumber::DiskFull,
                             "full");
    }
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Folk.pla"));
    EXPECT_THAT(library.host.log, SizeIs(11));
    EXPECT_EQ(library.host.log.back(),
              "Quillon: Generate New Playlists Error: Line 0 10 lists in a row could not be made, "
              "so the others are not tried");
}

/// The next run would not know it for one of the tool's.
TEST_F(CreateTest, MakesNoListWhoseRowCouldNotBeRecorded) {
    AddSpinner("Ann", "One", "Folk");
    library.Database().Refuse("Insert Playlists");
    Create();
    EXPECT_THAT(Lists(), IsEmpty());
    EXPECT_THAT(library.host.log,
                ElementsAre(HasSubstr("Generate New Playlists Error: Line 0 refused"),
                            HasSubstr(R"(refused (D:\Lists\Ann.pla))")));
}

TEST_F(CreateTest, LeavesOutAGenreThatNoFileCanBeNamedAfter) {
    AddSpinner("Ann", "One", "12\" Mix");
    AddSpinner("Bob", "Four", "Folk");
    Create();
    EXPECT_THAT(Lists(), ElementsAre("Ann.pla", "Bob.pla", "Folk.pla"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: No playlist for 12\" Mix: no file can have that name"));
}

}  // namespace
}  // namespace quillon
