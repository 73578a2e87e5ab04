#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "taglib/tag_library.h"
#include "tests/reconcile/adding_fixture.h"
#include "tests/support/tagged_file.h"

namespace quillon {
namespace {

using support::FrameBytes;
using support::FramesTag;
using support::Sound;
using support::TextContent;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class AddedCompilation : public AddingTest {
  protected:
    AddedCompilation() {
        library.run.tagFormats = &tags;
        library.run.modern.readsAllTags = true;
        library.run.modern.keepsTrackArtists = true;
    }

    /// A song of the album "Hits"; `more` are further frames.
    void AddSong(const std::string& name, const std::string& title, const std::string& artist,
                 const std::string& more) {
        const std::string frames = FrameBytes(3, "TIT2", TextContent(title)) +
                                   FrameBytes(3, "TPE1", TextContent(artist)) +
                                   FrameBytes(3, "TALB", TextContent("Hits")) + more;
        library.files.AddFile(R"(D:\New\)" + name,
                              FramesTag(3, frames) + Sound(300 + 10 * title.size()) + title);
    }
    static std::string FiledUnder(const std::string& artist) {
        return FrameBytes(3, "TPE2", TextContent(artist));
    }

    TagLibrary tags;
};

TEST_F(AddedCompilation, StaysTogetherUnderItsAlbumArtist) {
    AddSong("1.mp3", "Dawn", "Alder", FiledUnder("Friends"));
    AddSong("CD2/1.mp3", "Dusk", "Birch", FiledUnder("Friends"));
    Add();
    EXPECT_THAT(library.Albums(), ElementsAre("Friends|Hits|2"));
    EXPECT_THAT(library.Rows("SELECT SoundFile FROM Tracks"),
                UnorderedElementsAre(R"(D:\Music\Friends\Hits\Dawn.mp3)",
                                     R"(D:\Music\Friends\Hits\Dusk.mp3)"));
    EXPECT_THAT(Log(), IsEmpty());
    const auto rows = AllRows();
    Add();
    EXPECT_EQ(AllRows(), rows);
}

TEST_F(AddedCompilation, WithoutAnAlbumArtistIsOneOfVariousArtists) {
    const std::string part = FrameBytes(3, "TCMP", TextContent("1"));
    AddSong("1.mp3", "Dawn", "Alder", part);
    AddSong("2.mp3", "Dusk", "Birch", part);
    AddSong("3.mp3", "Noon", "Cedar", FrameBytes(3, "TCMP", TextContent("0")));
    Add();
    EXPECT_THAT(library.Albums(), UnorderedElementsAre("Cedar|Hits|1", "Various Artists|Hits|2"));
}

TEST_F(AddedCompilation, KeepsSongsOfOneTitleApart) {
    AddSong("1.mp3", "Dawn", "Alder", FiledUnder("Friends"));
    AddSong("2.mp3", "Dawn", "Birch", FiledUnder("Friends"));
    library.files.AddFile(R"(D:\New\2.mp3)", library.files.Content(R"(D:\New\2.mp3)") + "other");
    Add();
    EXPECT_THAT(library.Rows("SELECT SoundFile FROM Tracks"),
                UnorderedElementsAre(R"(D:\Music\Friends\Hits\Dawn.mp3)",
                                     R"(D:\Music\Friends\Hits\Dawn (2).mp3)"));
}

TEST_F(AddedCompilation, IsNoAlbumOfOneArtistWhoeverItIsFiledUnder) {
    AddSong("1.mp3", "Dawn", "The Alders", FiledUnder("Alders, The"));
    AddSong("2.mp3", "Dusk", "The Alders", FiledUnder("Alders, The"));
    Add();
    EXPECT_THAT(library.Albums(), ElementsAre("The Alders|Hits|2"));
}

TEST_F(AddedCompilation, TakesASongThatComesLater) {
    AddSong("1.mp3", "Dawn", "Alder", FiledUnder("Friends"));
    AddSong("2.mp3", "Dusk", "Birch", FiledUnder("Friends"));
    Add();
    library.files.DeleteFile(R"(D:\New\1.mp3)");
    library.files.DeleteFile(R"(D:\New\2.mp3)");
    AddSong("3.mp3", "Noon", "Cedar", FiledUnder("Friends"));
    Add();
    EXPECT_THAT(library.Albums(), ElementsAre("Friends|Hits|3"));
}

TEST_F(AddedCompilation, IsNotAddedAgainWhereItHasComeApart) {
    AddSong("1.mp3", "Dawn", "Alder", FiledUnder("Friends"));
    AddSong("2.mp3", "Dusk", "Birch", FiledUnder("Friends"));
    library.run.modern.keepsTrackArtists = false;
    Add();
    EXPECT_THAT(library.Albums(), UnorderedElementsAre("Alder|Hits|1", "Birch|Hits|1"));
    const auto rows = AllRows();
    library.run.modern.keepsTrackArtists = true;
    Add();
    EXPECT_EQ(AllRows(), rows);
}

}  // namespace
}  // namespace quillon
