#include "picker/modern/catalogue.h"

#include <gmock/gmock.h>

#include "tests/picker/modern/fixture.h"

namespace quillon {
namespace {

class CatalogueTest : public ModernFixture {
  protected:
    void AddSong(const std::string& album, const std::string& song, const std::string& genre) {
        Execute("INSERT INTO Spinner (Artist, Album, Song, Genre) VALUES ('ALDER', '" + album +
                "', '" + song + "', " + genre + ")");
    }

    /// The genre of the one album there is, "One" by Alder.
    std::string Genre() { return Made().extras.at(0).genre; }

    Catalogue Made() {
        return MakeCatalogue(ReadPickerAlbums(run, *run.connection), *run.connection);
    }
};

TEST_F(CatalogueTest, HasTheGenreOfMostSongs) {
    AddAlbum({.cdjid = "1", .artist = "Alder", .title = "One"});
    AddSong("one", "a", "'Rock'");
    AddSong("One", "b", "'Jazz'");
    AddSong("One", "c", "'Jazz'");
    AddSong("Two", "d", "'Rock'");
    AddSong("Two", "e", "'Rock'");
    EXPECT_EQ(Genre(), "Jazz");
}

TEST_F(CatalogueTest, TakesNeitherNumbersNorOtherForGenres) {
    AddAlbum({.cdjid = "1", .artist = "Alder", .title = "One"});
    AddSong("One", "a", "'1'");
    AddSong("One", "b", "'Other'");
    AddSong("One", "c", "Null");
    AddSong("One", "d", "' '");
    EXPECT_EQ(Genre(), "");
    AddSong("One", "e", "'2-step'");
    EXPECT_EQ(Genre(), "2-step");
}

TEST_F(CatalogueTest, KnowsWhenAnAlbumWasAddedUnlessThatIsTheZeroDate) {
    AddAlbum({.cdjid = "1", .artist = "Alder", .title = "One"});
    EXPECT_FALSE(Made().extras.at(0).added);
    Execute("UPDATE Albums SET DateAdded=#1899-12-30#");
    EXPECT_FALSE(Made().extras.at(0).added);
    Execute("UPDATE Albums SET DateAdded=#2026-03-01#");
    EXPECT_EQ(Made().extras.at(0).added, MakeDateTime(2026, 3, 1));
}

}  // namespace
}  // namespace quillon
