#include "database/missing_tracks.h"

#include "platform/database.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {

bool DeleteMissingTracks(Run& run) {
    Steps steps(run, "Delete Missing Tracks Error:");
    return steps.Try(0, [&run] {
        const auto tracks = run.connection->Execute(
            "DELETE Tracks.* FROM Tracks INNER JOIN Albums ON Tracks.CDJID = Albums.CDJID "
            "WHERE (((Albums.Player)=1001) AND ((Tracks.Track)=0))");
        run.counts.tracksRemoved += static_cast<std::size_t>(tracks);
    });
}

void DeleteMissingAlbums(Run& run) {
    const auto albums =
        run.connection->Execute("DELETE * FROM Albums WHERE Tracks=0 and Player=1001");
    run.counts.albumsRemoved += static_cast<std::size_t>(albums);
}

}  // namespace quillon
