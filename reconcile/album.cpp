#include "reconcile/album.h"

#include <memory>
#include <optional>

#include "database/schema.h"
#include "database/sql.h"
#include "database/track_numbers.h"
#include "platform/clock.h"
#include "platform/failure.h"
#include "reconcile/new_rows.h"
#include "reconcile/walk.h"
#include "run/steps.h"

namespace quillon {
namespace {

std::optional<std::int64_t> FindAlbum(Connection& connection, std::string_view artist,
                                      std::string_view title) {
    const std::unique_ptr<RecordSet> found =
        connection.Query("SELECT ID FROM Albums WHERE Title=" + Quoted(title) +
                         " AND Artist=" + Quoted(artist) + " AND Player=1001");
    if (found->IsEmpty()) return std::nullopt;
    return found->Integer("ID");
}

std::string UpdateAlbum(Walk& walk, std::int64_t id, std::int16_t trackCount) {
    RecordSet& albums = *walk.albums;
    if (!MoveToId(albums, id)) {
        throw Failure::Described(FailureNumber::Database,
                                 "Album record missing for ID " + std::to_string(id));
    }
    const Value present = albums.Get("Tracks"), wanted = std::int64_t{trackCount};
    if (present != wanted) {
        albums.Set("Tracks", wanted);
        albums.Update();
    }
    if (trackCount > 0) {
        const MarkedAlbum* const before = walk.before.FindAlbum(id);
        const bool same = before != nullptr ? before->count == trackCount : present == wanted;
        ++(same ? walk.run.counts.albumsUnchanged : walk.run.counts.albumsChanged);
    }
    return albums.Text("CDJID");
}

void AddAlbum(Walk& walk, std::string_view artist, std::string_view title, std::int16_t trackCount,
              const std::string& cdjid) {
    AddAlbumRow(*walk.albums, walk.run.clock.Now(),
                {.cdjid = cdjid,
                 .artist = std::string(artist),
                 .title = std::string(title),
                 .trackCount = trackCount});
    walk.sequence.Taken(cdjid);
    ++walk.run.counts.albumsAdded;
}

}  // namespace

std::string ProcessOneAlbum(Walk& walk, std::string_view artist, std::string_view title,
                            std::int16_t trackCount) {
    std::string cdjid(NoCdjid);
    Steps steps(walk.run, "ProcessOneAlbum");
    const bool done = steps.Try(2, [&] {
        if (const auto id = FindAlbum(*walk.run.connection, artist, title)) {
            cdjid = UpdateAlbum(walk, *id, trackCount);
        } else if (trackCount > 0) {
            const std::string next = walk.sequence.GetNextCDJID();
            if (next.empty()) return;
            AddAlbum(walk, artist, title, trackCount, next);
            cdjid = next;
        }
    });
    // Else the next album's values would join what is left of this one's.
    if (!done) steps.Try(2, [&walk] { walk.albums->CancelUpdate(); });
    return cdjid;
}

}  // namespace quillon
