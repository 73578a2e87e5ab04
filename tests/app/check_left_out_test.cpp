#include <filesystem>
#include <gtest/gtest.h>

#include "tests/app/check_fixture.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

class CheckLeftOut : public CheckFixture {
  protected:
    CheckLeftOut() { SetHostLine("Discs=1", "Discs=0"); }

    void Add(const std::string& path) const {
        fs::create_directories(Path("Music/" + path).parent_path());
        Write("Music/" + path, "x");
    }
};

TEST_F(CheckLeftOut, SaysNothingWhereAllHasItsPlace) {
    Add("Red/One/a.mp3");
    Add("Red/One/cover.jpg");
    Add("Red/One/Scans/back.jpg");
    Add("Red/photo.jpg");
    EXPECT_FALSE(Has(Cautions(), "left out"));
}

TEST_F(CheckLeftOut, NamesWhatNoRunTakesInAndWhere) {
    Add("Red/One/a.mp3");
    Add("Red/One/CD1/b.mp3");
    Add("Red/One/CD1/c.mp3");
    Add("Red/One/d.flac");
    Add("Red/loose.mp3");
    Add("top.mp3");
    EXPECT_TRUE(Has(Cautions(),
                    "5 music files are left out, since the layout has no place for them: 2 in "
                    "folders below album folders (D:\\Music\\Red\\One\\CD1), 2 in no album folder "
                    "(D:\\Music\\top.mp3, D:\\Music\\Red\\loose.mp3), 1 of another type than MP3 "
                    "(D:\\Music\\Red\\One\\d.flac). Only MP3 files directly in an album folder "
                    "(Artist\\Album\\Song.mp3) are added"));
    EXPECT_EQ(Check().status, 0);
}

TEST_F(CheckLeftOut, TellsHowDiscsAreAddedToTheirAlbums) {
    constexpr std::string_view Hint =
        "Discs=1 in [Library] of host.ini adds folders such as CD1 to their albums";
    Add("Red/One/Scans/a.mp3");
    EXPECT_FALSE(Has(Cautions(), Hint));
    Add("Red/One/CD1/a.mp3");
    EXPECT_TRUE(Has(Cautions(), Hint));
    SetHostLine("Discs=0", "Discs=1");
    Add("Red/One/CD1/Deeper/a.mp3");
    EXPECT_TRUE(Has(Cautions(), "2 music files are left out"))
        << "the disc is part of the album, and what is below it is not";
    EXPECT_FALSE(Has(Cautions(), Hint));
}

TEST_F(CheckLeftOut, NamesTheFirstTenPlacesAlone) {
    for (int i = 0; i < 13; ++i)
        Add("Red/One/CD" + std::to_string(i) + "/a.mp3");
    const std::string cautions = Cautions();
    EXPECT_TRUE(Has(cautions, "13 music files are left out"));
    EXPECT_TRUE(Has(cautions, "and 3 more)"));
}

TEST_F(CheckLeftOut, LooksAtTheFlatLayout) {
    Set("FlatStructure", "1");
    Add("Red_a.mp3");
    Add("nobody.mp3");
    Add("Red/One/b.mp3");
    EXPECT_TRUE(Has(Cautions(),
                    "3 music files are left out, since the layout has no place for them: 2 in "
                    "folders, where the flat layout does not look (D:\\Music\\Red\\One, "
                    "D:\\Music\\Alder\\First Light), 1 without an "
                    "\"_\" behind the artist's name (D:\\Music\\nobody.mp3)"))
        << Cautions();
}

TEST_F(CheckLeftOut, FollowsLinksToArtistsAndNoneBelowAlbums) {
    Add("Red/One/a.mp3");
    MakeFolder("Elsewhere/Two/CD1");
    Write("Elsewhere/Two/CD1/b.mp3", "x");
    fs::create_directory_symlink(Path("Elsewhere"), Path("Music/Blue"));
    fs::create_directory_symlink(Path("Music"), Path("Music/Red/One/loop"));
    EXPECT_TRUE(Has(Cautions(),
                    "1 music file is left out, since the layout has no place for it: 1 "
                    "in folders below album folders (D:\\Music\\Blue\\Two\\CD1)"));
}

TEST_F(CheckLeftOut, LeavesOutExcludedArtistsAndOtherModes) {
    Add("Red/loose.mp3");
    Set("ExcludeList", "Blue,red");
    EXPECT_FALSE(Has(Cautions(), "left out"));
    Set("ExcludeList", "Blue");
    EXPECT_TRUE(Has(Cautions(), "1 music file is left out"));
    Choose("AlbumPicker");
    EXPECT_FALSE(Has(Cautions(), "left out"));
}

}  // namespace
}  // namespace quillon
