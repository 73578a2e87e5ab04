#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "tests/id3/store_fixture.h"

/// What of a tag stays, and whose row counts, where names alone do not tell.
namespace quillon {
namespace {

using support::RawTag;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST_F(StoreID3Test, NeverWritesTheArtistIntoTheTitle) {
    AddFile(R"(ALDER\First Light\Alder - Dawn.mp3)");
    AddDifference("Album", "", "Alder - Dawn", "ALDER");
    Write();
    EXPECT_EQ(Record(), "TAG|Dawn|ALDER|First Light|1999|live Length='185'||4|Rock|");
}

TEST_F(StoreID3Test, LeavesATextThatNoNameCanHold) {
    RawTag tag = OldTag();
    tag.artist = "AC/DC";
    tag.song = "Who? [live]";
    const std::string path = R"(AC-DC\First Light\AC-DC - Who (live).mp3)";
    AddFile(path, tag);
    AddDifference("Album", "Last Light", "Who (live)", "AC-DC");
    Write();
    EXPECT_EQ(Record(path), "TAG|Who? [live]|AC/DC|First Light|1999|live||9|AlternRock|");
}

TEST_F(StoreID3Test, LeavesTextsInUtf8ThatSayTheSame) {
    RawTag tag = OldTag();
    tag.song = "初恋";
    tag.artist = "Fr\u00FChling";
    const std::string path = "Fr\u00FChling\\First Light\\初恋.mp3";
    AddFile(path, tag);
    AddDifference("Album", "Last Light", "初恋", "Fr\u00FChling");
    Write();
    EXPECT_EQ(Record(path), "TAG|初恋|Fr\u00FChling|First Light|1999|live||9|AlternRock|");
    EXPECT_THAT(library.files.Content(std::string(support::TestLibrary::Root) + path),
                HasSubstr(std::string("Fr\u00FChling") + '\0'));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(StoreID3Test, TakesNumberAndLengthOfEachFilesOwnRow) {
    AddFile(File);
    AddFile(std::string(Folder) + "Dawn.mp3");
    library.Execute("UPDATE Tracks SET SoundFile = 'D:\\Music\\" + std::string(File) + "'");
    AddTrack("252E671073EC0001", 7, "Dawn", 1, 0);
    library.Execute("UPDATE Tracks SET SoundFile = 'D:\\Music\\" + std::string(Folder) +
                    "Dawn.mp3' WHERE Track = 7");
    AddDifference("Album");
    Write();
    EXPECT_EQ(Record(), "TAG|Dawn|Alder|First Light|1999|live Length='185'||4|Rock|");
    EXPECT_EQ(Record(std::string(Folder) + "Dawn.mp3"),
              "TAG|Dawn|Alder|First Light|1999|live Length='60'||7|Rock|");
}

}  // namespace
}  // namespace quillon
