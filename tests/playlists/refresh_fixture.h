#pragma once

#include "tests/playlists/playlist_fixture.h"

namespace quillon {

/// Playlists that are refreshed; none are generated.
class RefreshTest : public PlaylistTest {
  protected:
    RefreshTest() {
        run().settings.GenrePlaylist = false;
        run().settings.ArtistPlaylist = false;
    }

    /// Swaps the first and the last song of album A0.
    void TurnRound() {
        Renumber("One", 3);
        Renumber("Three", 1);
    }
};

}  // namespace quillon
