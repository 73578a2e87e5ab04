#include "picker/modern/views.h"

#include <gmock/gmock.h>

namespace quillon {
namespace {

using ::testing::ElementsAre;

struct Row {
    std::string artist;
    std::string genre = {};
    std::optional<DateTime> added = {};
};

Catalogue CatalogueOf(const std::vector<Row>& rows) {
    Catalogue catalogue;
    for (const Row& row : rows) {
        catalogue.all.albums.emplace_back().artist = row.artist;
        catalogue.extras.push_back({.genre = row.genre, .added = row.added, .thumbnail = {}});
    }
    return catalogue;
}

std::vector<std::string> Captions(const std::vector<PickerView>& views) {
    std::vector<std::string> captions;
    for (const PickerView& view : views)
        captions.push_back(view.caption);
    return captions;
}

/// "A: 0 2".
std::vector<std::string> Sections(const PickerView& view) {
    std::vector<std::string> texts;
    for (const Section& section : view.sections) {
        std::string text = section.heading + ':';
        for (const std::size_t album : section.albums)
            text += ' ' + std::to_string(album);
        texts.push_back(text);
    }
    return texts;
}

/// "A 0+3" for a piece; pages apart by "|".
std::string Pages(const PickerView& view) {
    std::string text;
    for (const auto& page : view.pages) {
        if (&page != &view.pages.front()) text += " |";
        for (const Piece& piece : page) {
            text += ' ' + view.sections[piece.section].heading + ' ' + std::to_string(piece.first) +
                    '+' + std::to_string(piece.count);
        }
    }
    return text;
}

Catalogue Letters(const std::vector<std::pair<char, std::size_t>>& counts) {
    std::vector<Row> rows;
    for (const auto& [letter, count] : counts)
        rows.insert(rows.end(), count, {std::string(1, letter)});
    return CatalogueOf(rows);
}

TEST(Views, GatherArtistsUnderTheirLettersInTheOrderOfTheCatalogue) {
    const auto views = ViewsOf(CatalogueOf({{"alder"}, {"Birch"}, {"2 Fir"}, {"Ähre"}, {"Ash"}}));
    EXPECT_THAT(Captions(views), ElementsAre("Artists"));
    EXPECT_THAT(Sections(views[0]), ElementsAre("#: 2", "A: 0 3 4", "B: 1"));
}

TEST(Views, GatherGenresWithTheAlbumsWithoutOneLast) {
    const auto views =
        ViewsOf(CatalogueOf({{"A", "rock"}, {"B", ""}, {"C", "Jazz"}, {"D", "Rock"}}));
    EXPECT_THAT(Captions(views), ElementsAre("Artists", "Genres"));
    EXPECT_THAT(Sections(views[1]), ElementsAre("Jazz: 2", "rock: 0 3", "No genre: 1"));
}

TEST(Views, ShowTheNewestAlbumsByMonth) {
    const auto views = ViewsOf(CatalogueOf({{"A", "", MakeDateTime(2026, 3, 1)},
                                            {"B"},
                                            {"C", "", MakeDateTime(2026, 11, 2)},
                                            {"D", "", MakeDateTime(2026, 3, 31, 23)}}));
    EXPECT_THAT(Captions(views), ElementsAre("Artists", "New"));
    EXPECT_THAT(Sections(views[1]), ElementsAre("November 2026: 2", "March 2026: 3 0"));
}

TEST(Views, ShowNoMoreNewAlbumsThanAPageHolds) {
    const std::vector<Row> rows(MostNewAlbums + 5, {"A", "", MakeDateTime(2026, 3, 1)});
    const auto views = ViewsOf(CatalogueOf(rows));
    EXPECT_EQ(views[1].sections[0].albums.size(), MostNewAlbums);
    EXPECT_EQ(views[1].sections[0].albums[0], 0U);
}

TEST(Views, HaveOneEmptyPageWithoutAlbums) {
    const auto views = ViewsOf({});
    ASSERT_THAT(Captions(views), ElementsAre("Artists"));
    EXPECT_EQ(views[0].pages.size(), 1U);
    EXPECT_EQ(views[0].FileName(0), "AlbumPicker0.asp");
}

TEST(Views, BeginAPageWithALetterThatDoesNotFit) {
    EXPECT_EQ(Pages(ViewsOf(Letters({{'A', 200}, {'B', 100}, {'C', 100}}))[0]),
              " A 0+200 | B 0+100 C 0+100");
}

TEST(Views, FillAPageThatWouldStayHalfEmpty) {
    EXPECT_EQ(Pages(ViewsOf(Letters({{'A', 10}, {'B', 300}, {'C', 5}}))[0]),
              " A 0+10 B 0+230 | B 230+70 C 0+5");
}

TEST(Views, SpreadALetterOverAsManyPagesAsItTakes) {
    const auto views = ViewsOf(Letters({{'A', 480}, {'B', 1}}));
    EXPECT_EQ(Pages(views[0]), " A 0+240 | A 240+240 | B 0+1");
    EXPECT_EQ(views[0].PageOfSection(0), 0U);
    EXPECT_EQ(views[0].PageOfSection(1), 2U);
    EXPECT_EQ(views[0].FileName(2), "AlbumPickerArtists3.asp");
}

}  // namespace
}  // namespace quillon
