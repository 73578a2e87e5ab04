#include "run/name_cleaning.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(NoNasties, RemovesWhatFileNamesCannotHold) {
    EXPECT_EQ(NoNasties("Who?<>{}@:~^%#$*`s there"), "Whos there");
}

TEST(NoNasties, MakesBracketsRoundAndSlashesHyphens) {
    EXPECT_EQ(NoNasties("[Live] AC/DC\\Remix]["), "(Live) AC-DC-Remix)(");
}

TEST(NoNasties, LeavesQuotesBarsBlanksAndLettersAlone) {
    EXPECT_EQ(NoNasties(" \"Don't\" | Stop + Go & \xC3\x9C"
                        "ber, Now. "),
              " \"Don't\" | Stop + Go & \xC3\x9C"
              "ber, Now. ");
}

TEST(NoNasties, MayLeaveNothing) {
    EXPECT_EQ(NoNasties("???"), "");
}

TEST(NoPlaylistNasties, CleansGenreAndArtistNames) {
    EXPECT_EQ(NoPlaylistNasties("Rock & Roll"), "RockAndRoll");
    EXPECT_EQ(NoPlaylistNasties("AC/DC"), "AC-DC");
    EXPECT_EQ(NoPlaylistNasties("Rock & Roll/Blues"), "RockAndRoll-Blues");
}

TEST(NoPlaylistNasties, RemovesApostrophesBlanksBarsAndPluses) {
    EXPECT_EQ(NoPlaylistNasties(" Rock 'n' Roll | 70s + 80s "), "RocknRoll70s80s");
}

TEST(NoPlaylistNasties, GivesTwoNamesThatDifferInRemovedCharactersTheSameFile) {
    EXPECT_EQ(NoPlaylistNasties("Hip Hop"), NoPlaylistNasties("HipHop"));
}

}  // namespace
}  // namespace quillon
