#include "tests/id3/store_fixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

TEST_F(StoreID3Test, FindsFilesOfDiscsWhereThoseBelongToTheirAlbum) {
    const std::string path = R"(Alder\First Light\CD2\Alder - Dawn.mp3)";
    AddFile(path);
    AddDifference("Song");
    Write();
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("File not found")));
    library.host.log.clear();
    library.run.modern.joinsDiscs = true;
    Write();
    EXPECT_THAT(Log(), IsEmpty());
    EXPECT_THAT(Record(path), StartsWith("TAG|Dawn|Alder|First Light|"));
}

TEST_F(StoreID3Test, FindsFilesByTheTitleBehindTheArtistOfTheTrack) {
    const std::string path = R"(Alder\First Light\Birch - Dawn.mp3)";
    AddFile(path);
    AddDifference("Song");
    Write();
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("File not found")));
    library.host.log.clear();
    library.run.modern.keepsTrackArtists = true;
    Write();
    EXPECT_THAT(Log(), IsEmpty());
    EXPECT_THAT(Record(path), StartsWith("TAG|Dawn|"));
}

}  // namespace
}  // namespace quillon
