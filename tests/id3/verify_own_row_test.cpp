#include "tests/id3/verify_fixture.h"

/// Which row a file is compared with and which one follows its tag: its own, whatever else has the
/// same names.
namespace quillon {
namespace {

using support::RawTag;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class VerifyOwnRowTest : public VerifyTest {
  protected:
    static RawTag LongTag(const std::string& song, const std::string& seconds,
                          std::uint8_t track = 1) {
        RawTag tag = TagOf(song, track);
        tag.comment = "Length='" + seconds + "'";
        return tag;
    }
    void SetLength(const std::string& path, int minutes) {
        library.Execute("UPDATE Tracks SET Seconds=0, Minutes=" + std::to_string(minutes) +
                        " WHERE SoundFile=\"" + path + "\"");
    }
    std::vector<std::string> Rows() {
        return library.Rows("SELECT Track, Minutes, Seconds FROM Tracks ORDER BY ID");
    }
};

TEST_F(VerifyOwnRowTest, IsNotThatOfADiscWithTheSameNames) {
    library.AddAlbumRow("DISC", "Alder", "First Light", 1, 2);
    library.Execute(
        "INSERT INTO Tracks (CDJID, Track, Title, Minutes, Seconds, TimesPlayed) "
        "VALUES ('DISC', 8, 'Dawn', 9, 9, 0)");
    AddTrack("Alder - Dawn.mp3", "Dawn", LongTag("Dawn", "180", 4));
    SetLength(PathOf("Alder - Dawn.mp3"), 3);
    Verify();
    TakeNumbers();
    EXPECT_THAT(Differences(), IsEmpty());
    EXPECT_THAT(Rows(), ElementsAre("8|9|9", "4|3|0"));
}

TEST_F(VerifyOwnRowTest, IsNotThatOfTheFileWithTheArtistInItsName) {
    AddTrack("Alder - s1.mp3", "s1", LongTag("s1", "60", 1));
    AddTrack("s1.mp3", "s1", LongTag("s1", "300", 2));
    Verify();
    EXPECT_THAT(Rows(), ElementsAre("1|1|0", "2|5|0"));
    SetLength(PathOf("s1.mp3"), 4);
    library.Execute("DELETE * FROM SpinnerID3Differences");
    Verify();
    EXPECT_THAT(Differences(), ElementsAre("Comment|Length=300|Length=240|s1"));
    EXPECT_THAT(Rows(), ElementsAre("1|1|0", "2|4|0"));
}

TEST_F(VerifyOwnRowTest, IsNotThatOfTheSameSongInAnotherRoot) {
    library.run.LibraryFolders.push_back({R"(E:\More)", "More"});
    AddTrack("Alder - Dawn.mp3", "Dawn", LongTag("Dawn", "60", 3));
    const std::string other = R"(E:\More\Alder\First Light\Alder - Dawn.mp3)";
    library.files.AddFile(other, support::SoundFile(LongTag("Dawn", "120", 5)));
    library.AddTrackRow(Cdjid, 2, other, "Dawn");
    library.Execute("UPDATE Tracks SET Minutes=-1, Seconds=-1");
    Verify();
    TakeNumbers();
    EXPECT_THAT(Rows(), ElementsAre("3|1|0", "5|2|0"));
}

TEST_F(VerifyOwnRowTest, IsFoundWhateverItsTitle) {
    AddTrack("01 - Dawn.mp3", "Dawn", LongTag("Dawn", "60", 7));
    Verify();
    TakeNumbers();
    EXPECT_THAT(Tracks(), ElementsAre("Alder - Dawn.mp3|Dawn|7|1"));
    EXPECT_THAT(Rows(), ElementsAre("7|1|0"));
}

TEST_F(VerifyOwnRowTest, KeepsAKnownLengthThatAnInterruptedRunHasLedOn) {
    AddFile("01 - Dawn.mp3", LongTag("Dawn", "60"));
    AddRow("Alder - Dawn.mp3", "Dawn");
    SetLength(PathOf("Alder - Dawn.mp3"), 3);
    Verify();
    EXPECT_THAT(Rows(), ElementsAre("1|3|0"));
    EXPECT_THAT(Differences(), ElementsAre("Song|Dawn|01 - Dawn|01 - Dawn",
                                           "Comment|Length=60|Length=180|01 - Dawn"));
}

TEST_F(VerifyOwnRowTest, KeepsAKnownNumberAndLengthWhereTheTagsAreDamaged) {
    AddTrack("Alder - Dawn.mp3", "Dawn", LongTag("Dawn", "-1", 0));
    AddTrack("Alder - Noon.mp3", "Noon", TagOf("Noon", 0));
    SetLength(PathOf("Alder - Dawn.mp3"), 3);
    Verify();
    EXPECT_THAT(Rows(), ElementsAre("1|3|0", "2|-1|-1"));
    EXPECT_THAT(Differences(),
                ElementsAre("Comment|Length=-1|Length=180|Dawn", "Track Number Missing|||Dawn"));
}

}  // namespace
}  // namespace quillon
