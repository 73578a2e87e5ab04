#include "id3/track_artists.h"

#include <gtest/gtest.h>
#include <initializer_list>

namespace quillon {
namespace {

TrackArtists Of(std::initializer_list<const char*> tags) {
    TrackArtists artists;
    for (const char* const tag : tags)
        artists.Add(tag);
    return artists;
}

TEST(TrackArtists, AreSeveralWhereTagsNameMoreThanOne) {
    EXPECT_FALSE(Of({}).AreSeveral());
    EXPECT_FALSE(Of({"Alder", "alder ", "", "Alder"}).AreSeveral());
    EXPECT_TRUE(Of({"Alder", "Birch"}).AreSeveral());
    EXPECT_TRUE(Of({"Alder", "Alder feat. Birch"}).AreSeveral());
}

TEST(TrackArtists, AreOneWhereVersion1HasCutTheName) {
    EXPECT_FALSE(Of({"An artist of many, many letters, and more", "An artist of many, many letter"})
                     .AreSeveral());
}

TEST(TrackArtists, AreTheTracksOwnWhereTheyAreSeveral) {
    const TrackArtists artists = Of({"Alder", "Birch"});
    EXPECT_EQ(artists.Of(" Birch ", "Various"), "Birch");
    EXPECT_EQ(artists.Of("", "Various"), "Various");
    EXPECT_EQ(Of({"Birch"}).Of("Birch", "Various"), "Various");
}

TEST(TrackArtists, AreTheFoldersWhereItsNameStandsForThem) {
    const TrackArtists artists = Of({"AC/DC", "Birch"});
    EXPECT_EQ(artists.Of("AC/DC", "AC-DC"), "AC-DC");
    EXPECT_EQ(artists.Of("alder", "Alder"), "Alder");
    EXPECT_EQ(artists.Of("AC/DC feat. Birch", "AC-DC"), "AC/DC feat. Birch");
}

TEST(TrackArtists, AreNoLongerThanTheDatabaseHasRoomFor) {
    EXPECT_EQ(Of({"Alder", "Birch"}).Of(std::string(300, 'x'), "Various"), "Various");
}

}  // namespace
}  // namespace quillon
