#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/id3/verify_fixture.h"

namespace quillon {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// An album whose tags name several artists.
class VerifyArtists : public VerifyTest {
  protected:
    VerifyArtists() { library.run.modern.keepsTrackArtists = true; }

    static support::RawTag By(const std::string& artist, const std::string& song,
                              std::uint8_t track) {
        support::RawTag tag = TagOf(song, track);
        tag.artist = artist;
        return tag;
    }
};

TEST_F(VerifyArtists, AreNoDifferences) {
    AddFile("Alder - Dawn.mp3", By("Alder", "Dawn", 1));
    AddFile("Alder - Noon.mp3", By("Birch", "Noon", 2));
    Verify();
    EXPECT_THAT(Differences(), IsEmpty());
    library.run.modern.keepsTrackArtists = false;
    library.Execute("DELETE * FROM SpinnerID3Differences");
    Verify();
    EXPECT_THAT(Differences(), Contains("Artist|Birch|Alder|Noon"));
}

TEST_F(VerifyArtists, OfOneNameAreADifferenceAsEver) {
    AddFile("Alder - Dawn.mp3", By("Elder", "Dawn", 1));
    Verify();
    EXPECT_THAT(Differences(), Contains("Artist|Elder|Alder|Dawn"));
}

TEST_F(VerifyArtists, MayBeginTheNamesOfTheirFiles) {
    AddFile("Birch - Dawn.mp3", By("Birch", "Dawn", 1));
    AddFile("Cedar - Dawn.mp3", By("Cedar", "Dawn", 2));
    AddFile("Cedar - Nun.mp3", By("Cedar", "Noon", 3));
    Verify();
    EXPECT_THAT(Names(), ElementsAre("Birch - Dawn.mp3", "Cedar - Dawn.mp3", "Cedar - Noon.mp3"));
}

TEST_F(VerifyArtists, MakeNoDuplicatesOfSongsOfOneTitle) {
    AddFile("01 - Dawn.mp3", By("Birch", "Dawn", 1));
    AddFile("02 - Dawn.mp3", By("Cedar", "Dawn", 2));
    AddFile("Alder - Noon.mp3", By("Cedar", "Noon", 3));
    AddFile("03 - Noon.mp3", By("Birch", "Noon", 4));
    Verify();
    EXPECT_THAT(Names(), ElementsAre("02 - Dawn.mp3", "03 - Noon.mp3", "Alder - Dawn.mp3",
                                     "Alder - Noon.mp3"));
    EXPECT_EQ(library.run.counts.filesRemoved, 0U);
}

TEST_F(VerifyArtists, OfOneDiscCountForTheWholeAlbum) {
    library.run.modern.joinsDiscs = true;
    AddFile(R"(CD1\Alder - Dawn.mp3)", By("Alder", "Dawn", 1));
    AddFile(R"(CD2\Birch - Noon.mp3)", By("Birch", "Noon", 1));
    AddFile(R"(CD2\x.mp3)", By("Birch", "Eve", 2));
    Verify();
    for (const std::string& row : Differences())
        EXPECT_EQ(row.find("Artist"), std::string::npos) << row;
    EXPECT_TRUE(library.files.FileExists(PathOf(R"(CD2\Birch - Noon.mp3)")));
    EXPECT_TRUE(library.files.FileExists(PathOf(R"(CD2\Alder - Eve.mp3)")))
        << "a file stays in its folder";
}

TEST_F(VerifyArtists, DoNotMakeSongsOfTwoDiscsDuplicates) {
    library.run.modern.joinsDiscs = true;
    AddFile(R"(CD1\Alder - Intro.mp3)", TagOf("Intro", 1));
    AddFile(R"(CD2\x.mp3)", TagOf("Intro", 1));
    Verify();
    EXPECT_TRUE(library.files.FileExists(PathOf(R"(CD1\Alder - Intro.mp3)")));
    EXPECT_TRUE(library.files.FileExists(PathOf(R"(CD2\Alder - Intro.mp3)")));
    EXPECT_THAT(Trouble(), IsEmpty());
}

}  // namespace
}  // namespace quillon
