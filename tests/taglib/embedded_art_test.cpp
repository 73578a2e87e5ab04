#include "covers/embedded_art.h"

#include <gmock/gmock.h>

#include "taglib/tag_library.h"
#include "tags/known_tags.h"
#include "tests/covers/covers_fixture.h"
#include "tests/support/tagged_file.h"

namespace quillon {
namespace {

using support::FrameBytes;
using support::FramesTag;
using support::Sound;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const std::string Picture = std::string("\xFF\xD8\xFF\xE0", 4) + std::string(500, 'j');

std::string WithPicture(const std::string& picture = Picture) {
    const std::string content = std::string(1, '\0') + "image/jpeg" + '\0' + '\3' + '\0' + picture;
    return FramesTag(3, FrameBytes(3, "APIC", content)) + Sound(2);
}

class EmbeddedArtTest : public RefreshAlbumCoversTest {
  protected:
    EmbeddedArtTest() {
        library.run.tagFormats = &tags;
        library.run.modern.takesFolderImages = true;
    }

    /// An album of two songs in a folder of its own.
    void AddSongs(const std::string& first, const std::string& second) {
        library.AddAlbumRow("A-1", "Ann", "First", 2);
        library.AddTrackRow("A-1", 1, Songs + "One.mp3", "One");
        library.AddTrackRow("A-1", 2, Songs + "Two.mp3", "Two");
        library.files.AddFile(Songs + "One.mp3", first);
        library.files.AddFile(Songs + "Two.mp3", second);
    }
    void NextRun() {
        library.run.knownTags.reset();
        library.calls.Forget();
        library.host.log.clear();
        Refresh();
    }
    std::size_t Opened() { return library.calls.Of({"OpenBinary"}).size(); }

    const std::string Songs = R"(D:\Music\Ann\First\)";
    const std::string Cover = R"(D:\Covers\Ann - First.jpg)";
    TagLibrary tags;
};

TEST_F(EmbeddedArtTest, IsWrittenOnceIntoTheCoverFolder) {
    AddSongs(Sound(2), WithPicture());
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(Cover));
    EXPECT_EQ(library.files.Content(Cover), Picture);
    EXPECT_THAT(Log(), ElementsAre("Quillon: Album Cover " + Cover + " added to Albums database"));
    EXPECT_EQ(library.run.counts.filesCopied, 0U) << "it is counted as a cover";
    EXPECT_EQ(library.run.counts.imagesAdded, 1U);
    NextRun();
    EXPECT_THAT(Images(), ElementsAre(Cover));
    EXPECT_THAT(Log(), IsEmpty());
    EXPECT_EQ(Opened(), 0U);
    EXPECT_THAT(library.calls.Of({"CreateText"}), IsEmpty());
}

TEST_F(EmbeddedArtTest, OfAPngIsACoverOfTheFolderInTheNextRun) {
    AddSongs(WithPicture("\x89PNG\r\n\x1A\n" + std::string(500, 'p')), Sound(2));
    for (int run = 0; run < 2; ++run) {
        NextRun();
        EXPECT_THAT(Images(), ElementsAre(R"(D:\Covers\Ann - First.png)"));
    }
    EXPECT_THAT(Log(), IsEmpty());
    EXPECT_EQ(library.run.counts.imagesChanged + library.run.counts.imagesRemoved, 0U);
}

TEST_F(EmbeddedArtTest, IsTakenWhereTheFolderHasNoImageAlone) {
    AddSongs(WithPicture(), Sound(2));
    library.files.AddFile(Songs + "cover.jpg", "image");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(Songs + "cover.jpg"));
    EXPECT_EQ(Opened(), 0U);
    EXPECT_FALSE(library.files.FileExists(Cover));
}

TEST_F(EmbeddedArtTest, IsTakenInTheFlatLayoutWhateverLiesBesideTheSongs) {
    library.run.settings.FlatStructure = true;
    AddSongs(WithPicture(), Sound(2));
    library.files.AddFile(Songs + "cover.jpg", "image");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(Cover));
    NextRun();
    EXPECT_THAT(Images(), ElementsAre(Cover));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(EmbeddedArtTest, IsLookedForOnceInSongsThatHaveNone) {
    AddSongs(Sound(2), Sound(3));
    Refresh();
    EXPECT_EQ(Opened(), 2U);
    NextRun();
    EXPECT_EQ(Opened(), 0U);
    EXPECT_THAT(library.calls.Of({"CreateText"}), IsEmpty());
    library.files.AddFile(Songs + "Two.mp3", WithPicture());
    NextRun();
    EXPECT_THAT(Images(), ElementsAre(Cover)) << "a file that was changed is looked at again";
}

TEST_F(EmbeddedArtTest, ThatIsTooLargeIsToldOfOnce) {
    AddSongs(WithPicture(Picture + std::string(TagFormats::MostArt, 'x')), Sound(2));
    Refresh();
    EXPECT_THAT(Images(), ElementsAre("Null"));
    EXPECT_THAT(Log(), ElementsAre("Quillon: The picture in " + Songs +
                                   "One.mp3 is too large for an album cover, and is left out"));
    EXPECT_EQ(library.run.counts.errors, 0U);
    NextRun();
    EXPECT_THAT(Log(), IsEmpty());
    EXPECT_EQ(Opened(), 0U);
}

TEST_F(EmbeddedArtTest, NeverOverwritesAnImage) {
    AddSongs(WithPicture(), Sound(2));
    library.files.AddFile(Cover, "mine");
    Refresh();
    EXPECT_THAT(Images(), ElementsAre(Cover));
    EXPECT_EQ(library.files.Content(Cover), "mine");
}

TEST_F(EmbeddedArtTest, IsLeftAloneWithoutACoverFolderOrTheKey) {
    AddSongs(WithPicture(), Sound(2));
    library.run.settings.AlbumCoverFolder = "";
    Refresh();
    EXPECT_THAT(Images(), ElementsAre("Null"));
    library.run.settings.AlbumCoverFolder = Folder;
    library.run.modern.takesFolderImages = false;
    Refresh();
    EXPECT_THAT(Images(), ElementsAre("Null"));
    EXPECT_EQ(Opened(), 0U);
}

}  // namespace
}  // namespace quillon
