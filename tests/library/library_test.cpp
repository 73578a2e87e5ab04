#include "library/library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/failure.h"
#include "tests/support/test_library.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Two albums of the tool's own, a disc, and a track of no album.
class LibraryTest : public ::testing::Test {
  protected:
    LibraryTest() {
        shelf.AddAlbumRow("A0", "Alder", "First Light", 2);
        shelf.AddAlbumRow("B0", "Brook", "Stones", 1);
        shelf.AddAlbumRow("DISC", "Alder", "First Light", 1, 1);
        shelf.AddTrackRow("A0", 1, R"(D:\Music\Alder\First Light\Dawn.mp3)", "Dawn");
        shelf.AddTrackRow("A0", 2, R"(D:\Music\Alder\First Light\Noon.mp3)", "Noon");
        shelf.AddTrackRow("B0", 1, R"(D:\Music\Brook\Stones\Dawn.mp3)", "Dawn");
        shelf.AddTrackRow("DISC", 1, R"(D:\Disc\Dawn.mp3)", "Dawn");
        shelf.AddTrackRow("none", 1, R"(D:\None\Dawn.mp3)", "Dawn");
    }

    Connection& Database() { return *shelf.run.connection; }

    static std::vector<std::string> Files(Library& library) {
        std::vector<std::string> files;
        for (const TrackRow& track : library.Tracks()) {
            if (track.isOwn && !track.isGone) files.push_back(track.soundFile);
        }
        return files;
    }

    std::vector<std::string> Numbers() {
        return shelf.Rows("SELECT CDJID, Track FROM Tracks ORDER BY ID");
    }

    support::TestLibrary shelf;
};

TEST_F(LibraryTest, TellsTheToolsOwnAlbumsAndTheirTracksFromOthers) {
    Library library(Database());
    ASSERT_EQ(library.Albums().size(), 3U);
    EXPECT_EQ(library.Albums()[1].artist, "Brook");
    EXPECT_FALSE(library.Albums()[2].isOwn);
    EXPECT_THAT(Files(library), ElementsAre(R"(D:\Music\Alder\First Light\Dawn.mp3)",
                                            R"(D:\Music\Alder\First Light\Noon.mp3)",
                                            R"(D:\Music\Brook\Stones\Dawn.mp3)"));
    EXPECT_EQ(library.Tracks()[1].number.Value(), 2);
    EXPECT_EQ(library.Tracks()[1].title, "Noon");
}

TEST_F(LibraryTest, FindsRowsWithoutLetterCaseAndWhateverStandsBeforeTheDrive) {
    shelf.Execute("UPDATE Tracks SET SoundFile='file:' & SoundFile WHERE Title='Noon'");
    Library library(Database());
    EXPECT_EQ(library.FindAlbum("ALDER", "first light")->cdjid, "A0");
    EXPECT_EQ(library.FindAlbum("Alder", "Stones"), nullptr);
    EXPECT_EQ(library.FindTrack(R"(d:\music\ALDER\First Light\noon.MP3)")->title, "Noon");
    EXPECT_EQ(library.FindTrack(R"(D:\Music\Alder\First Light\oon.mp3)"), nullptr);
    EXPECT_EQ(library.FindTrack(R"(E:\Alder\First Light\Noon.mp3)"), nullptr);
    EXPECT_EQ(library.AlbumOf(*library.FindTrack(TrackId{3}))->title, "Stones");
    EXPECT_EQ(library.FindTrack(R"(D:\Disc\Dawn.mp3)"), nullptr) << "a disc's";
    EXPECT_EQ(library.TracksOf("a0").size(), 2U);
}

TEST_F(LibraryTest, FindsTheFirstRowInTheFileAlsoAfterChanges) {
    shelf.AddAlbumRow("A1", "Alder", "First Light", 0);
    Library library(Database());
    EXPECT_EQ(library.FindAlbum("Alder", "First Light")->cdjid, "A0");
    AlbumRow& first = *library.AlbumWith("A0");
    const FieldValue other{"Title", std::string("Other")}, own{"Title", std::string("First Light")};
    library.Change(first, std::span(&other, 1));
    EXPECT_EQ(library.FindAlbum("Alder", "First Light")->cdjid, "A1");
    library.Change(first, std::span(&own, 1));
    EXPECT_EQ(library.FindAlbum("Alder", "First Light")->cdjid, "A0");
}

TEST_F(LibraryTest, WritesNothingOfWhatIsSetAsideAndGivenBack) {
    Library library(Database());
    const auto before = Numbers();
    library.MarkAll();
    EXPECT_EQ(library.Tracks()[1].number.Value(), 0);
    shelf.Database().ForgetStatements();
    library.Save();
    EXPECT_EQ(shelf.Database().Count(""), 0U) << "while it is set aside";
    library.Tracks()[1].number.Set(2);
    library.Albums()[0].count.Set(2);
    library.Save();
    EXPECT_EQ(shelf.Database().Count(""), 0U) << "when it is again what it was";
    EXPECT_EQ(Numbers(), before);
}

TEST_F(LibraryTest, WritesTheNumbersThatHaveChangedOnce) {
    Library library(Database());
    library.MarkAll();
    library.Tracks()[0].number.Set(7);
    library.Albums()[1].count.Set(3);
    shelf.Database().ForgetStatements();
    library.Save();
    library.Save();
    EXPECT_EQ(shelf.Database().Count("Update Tracks"), 1U);
    EXPECT_EQ(shelf.Database().Count("Update Albums"), 1U);
    EXPECT_THAT(Numbers(), ElementsAre("A0|7", "A0|2", "B0|1", "DISC|1", "none|1"));
    library.Tracks()[0].number.Restore();
    library.Save();
    EXPECT_THAT(Numbers(), ElementsAre("A0|1", "A0|2", "B0|1", "DISC|1", "none|1"));
    EXPECT_EQ(shelf.Faults(), "");
}

TEST_F(LibraryTest, AddsAndRemovesRowsAtOnce) {
    Library library(Database());
    const std::vector<FieldValue> fields{{"CDJID", std::string("B0")},
                                         {"Track", std::int64_t{2}},
                                         {"SoundFile", std::string(R"(D:\x.mp3)")}};
    const TrackRow& added = library.AddTrack(fields);
    EXPECT_EQ(added.number.Before(), RowNumber());
    EXPECT_EQ(library.FindTrack(R"(D:\x.mp3)"), &added);
    EXPECT_EQ(shelf.Rows("SELECT Track FROM Tracks WHERE ID=" +
                         std::to_string(static_cast<std::int64_t>(added.id))),
              std::vector<std::string>{"2"});
    library.Remove(*library.FindTrack(TrackId{3}));
    library.Remove(*library.AlbumWith("A0"));
    EXPECT_EQ(library.FindAlbum("Alder", "First Light"), nullptr);
    EXPECT_THAT(library.TracksOf("B0"), ElementsAre(&added));
    EXPECT_THAT(shelf.Rows("SELECT ID FROM Tracks WHERE ID=3"), IsEmpty());
    EXPECT_EQ(shelf.Faults(), "");
}

TEST_F(LibraryTest, KeepsARowAsItIsWhereAChangeIsRefused) {
    Library library(Database());
    TrackRow& track = *library.FindTrack(TrackId{2});
    const std::vector<FieldValue> fields{{"Title", std::string("fits")},
                                         {"Artist", std::string(256, 'x')}};
    EXPECT_THROW(library.Change(track, fields), Failure);
    EXPECT_EQ(track.title, "Noon");
    EXPECT_THAT(shelf.Rows("SELECT Title FROM Tracks WHERE ID=2"), ElementsAre("Noon"));
    EXPECT_THROW(library.AddTrack(fields), Failure);
    EXPECT_EQ(library.Tracks().size(), 5U);
}

}  // namespace
}  // namespace quillon
