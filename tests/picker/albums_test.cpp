#include "picker/albums.h"

#include <gmock/gmock.h>

#include "tests/picker/fixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PickerAlbumsTest : public PickerFixture {
  protected:
    PickerAlbumsTest() { run.settings.PickerMinimum = 1; }

    PickerAlbums Read() { return ReadPickerAlbums(run, *run.connection); }

    /// "Artist: Title (length) 1 Song 1:01, ..."
    std::vector<std::string> Told() {
        std::vector<std::string> told;
        for (const PickerAlbum& album : Read().albums) {
            std::string text =
                album.artist + ": " + album.title + " (" + LengthText(album.length) + ")";
            for (const PickerTrack& track : album.tracks) {
                text += " " + std::to_string(track.number) + " " + track.title + " " +
                        LengthText(track.length);
            }
            told.push_back(text);
        }
        return told;
    }

    void SetTrack(const std::string& what) { Execute("UPDATE Tracks SET " + what); }
};

TEST(LengthText, JoinsMinutesAndSeconds) {
    EXPECT_EQ(LengthText(0), "0:00");
    EXPECT_EQ(LengthText(7), "0:07");
    EXPECT_EQ(LengthText(60), "1:00");
    EXPECT_EQ(LengthText(3 * 60 + 45), "3:45");
    EXPECT_EQ(LengthText(74 * 60 + 9), "74:09");
    EXPECT_EQ(LengthText(std::nullopt), "x");
}

TEST(PickerConnectionString, PutsThePathBetweenApostrophes) {
    EXPECT_EQ(PickerConnectionString(R"(D:\a b;c\x.mdb)"),
              "Provider=Microsoft.Jet.OLEDB.4.0;Persist Security Info=False;"
              R"(Data Source='D:\a b;c\x.mdb')");
    const std::string path = R"(D:\Ann's\x.mdb)";
    EXPECT_EQ(ParseConnectionString(PickerConnectionString(path)).dataSource, path);
}

TEST_F(PickerAlbumsTest, ComeByArtistThenTitleAndTheirTracksByNumber) {
    AddAlbum({"3", "Birch", "Able", 1});
    AddAlbum({"1", "Alder", "Zenith", 1});
    AddAlbum({"2", "alder", "Noon", 2});
    Execute("UPDATE Tracks SET Track=5 WHERE CDJID='2' AND Track=1");
    EXPECT_THAT(Told(), ElementsAre("alder: Noon (3:03) 2 Song 2 2:02 5 Song 1 1:01",
                                    "Alder: Zenith (1:01) 1 Song 1 1:01",
                                    "Birch: Able (1:01) 1 Song 1 1:01"));
}

TEST_F(PickerAlbumsTest, OfTheSameNameKeepTheirOwnTracks) {
    AddAlbum({"1", "Various", "Hits", 2});
    AddAlbum({"2", "Various", "Hits", 3});
    AddAlbum({"3", "VARIOUS", "hits", 1});
    const PickerAlbums read = Read();
    std::vector<std::string> tracks;
    for (const PickerAlbum& album : read.albums)
        tracks.push_back(album.cdjid + " has " + std::to_string(album.tracks.size()));
    EXPECT_THAT(tracks, ::testing::UnorderedElementsAre("1 has 2", "2 has 3", "3 has 1"));
}

TEST_F(PickerAlbumsTest, AreCountedWithThoseThatAreTooSmall) {
    run.settings.PickerMinimum = 3;
    AddAlbum({"1", "Alder", "Big", 3});
    AddAlbum({"2", "Alder", "Small", 2});
    const PickerAlbums read = Read();
    EXPECT_EQ(read.inLibrary, 2);
    ASSERT_EQ(read.albums.size(), 1U);
    EXPECT_EQ(read.albums[0].trackCount, 3);
}

TEST_F(PickerAlbumsTest, NeedTracksWhateverTheirCountSays) {
    Execute("INSERT INTO Albums (CDJID, Artist, Title, Tracks) VALUES ('1', 'A', 'Empty', 9)");
    EXPECT_THAT(Read().albums, IsEmpty());
    EXPECT_EQ(Read().inLibrary, 1);
}

TEST_F(PickerAlbumsTest, TakeTheirOwnLengthBeforeThatOfTheirTracks) {
    AddAlbum({"1", "Alder", "One", 1});
    Execute("UPDATE Albums SET Minutes=44, Seconds=5");
    EXPECT_THAT(Told(), ElementsAre("Alder: One (44:05) 1 Song 1 1:01"));
}

TEST_F(PickerAlbumsTest, HaveAnUnknownLengthWhenATracksIsUnknown) {
    AddAlbum({"1", "Alder", "One", 2});
    Execute("UPDATE Tracks SET Minutes=-1, Seconds=-1 WHERE Track=2");
    EXPECT_THAT(Told(), ElementsAre("Alder: One (x) 1 Song 1 1:01 2 Song 2 x"));
}

TEST_F(PickerAlbumsTest, TakeWhatIsKnownOfALength) {
    AddAlbum({"1", "Alder", "One", 1});
    SetTrack("Minutes=3, Seconds=Null");
    EXPECT_THAT(Told(), ElementsAre("Alder: One (3:00) 1 Song 1 3:00"));
    SetTrack("Minutes=Null, Seconds=9");
    EXPECT_THAT(Told(), ElementsAre("Alder: One (0:09) 1 Song 1 0:09"));
    SetTrack("Minutes=1, Seconds=75");
    EXPECT_THAT(Told(), ElementsAre("Alder: One (2:15) 1 Song 1 2:15"));
    SetTrack("Minutes=Null, Seconds=Null");
    EXPECT_THAT(Told(), ElementsAre("Alder: One (x) 1 Song 1 x"));
}

TEST_F(PickerAlbumsTest, StandNullsInTheirTexts) {
    AddAlbum({"1", "Alder", "One", 1});
    Execute("UPDATE Albums SET Artist=Null, Title=Null, ImageFile=Null");
    SetTrack("Title=Null");
    EXPECT_THAT(Told(), ElementsAre(":  (1:01) 1 Track 1 1:01"));
    SetTrack("Title=Null, Track=Null");
    EXPECT_THAT(Told(), ElementsAre(":  (1:01) 0 Track x 1:01"));
}

}  // namespace
}  // namespace quillon
