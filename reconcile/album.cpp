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
#include "run/log.h"
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

/// Gives the album that the cursor stands on an identifier. Without one its tracks would be
/// nobody's and come anew in each run. Returns it, "" when there is none to be had, which is
/// logged.
std::string GiveIdentifier(Walk& walk, const std::string& album) {
    std::string cdjid = walk.sequence.GetNextCDJID(album);
    if (cdjid.empty()) return "";
    walk.albums->Set("CDJID", cdjid);
    walk.albums->Update();
    walk.sequence.Taken(cdjid);
    WriteLog(walk.run, LogSource, "Album " + album + " had no CDJID, it has got " + cdjid);
    return cdjid;
}

/// Returns the identifier, "" when the album has none.
std::string UpdateAlbum(Walk& walk, std::int64_t id, const std::string& album,
                        std::int16_t trackCount) {
    RecordSet& albums = *walk.albums;
    if (!MoveToId(albums, id)) {
        throw Failure::Described(FailureNumber::Database,
                                 "Album record missing for ID " + std::to_string(id));
    }
    std::string cdjid = albums.Text("CDJID");
    const bool hadIdentifier = !cdjid.empty();
    if (!hadIdentifier && trackCount > 0) {
        cdjid = GiveIdentifier(walk, album);
        if (cdjid.empty()) return "";
    }
    const Value present = albums.Get("Tracks"), wanted = std::int64_t{trackCount};
    if (present != wanted) {
        albums.Set("Tracks", wanted);
        albums.Update();
    }
    if (trackCount > 0) {
        const MarkedAlbum* const before = walk.before.FindAlbum(id);
        const bool same = before != nullptr ? before->count == trackCount : present == wanted;
        const bool isUnchanged = same && hadIdentifier;
        ++(isUnchanged ? walk.run.counts.albumsUnchanged : walk.run.counts.albumsChanged);
        if (!same && hadIdentifier) ++walk.recounted;
    }
    return cdjid;
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
    const std::string album = std::string(artist) + '\\' + std::string(title);
    Steps steps(walk.run, "ProcessOneAlbum");
    steps.Concerning(album);
    const bool done = steps.Try(2, [&] {
        if (const auto id = FindAlbum(*walk.run.connection, artist, title)) {
            const std::string known = UpdateAlbum(walk, *id, album, trackCount);
            if (!known.empty()) cdjid = known;
        } else if (trackCount > 0) {
            const std::string next = walk.sequence.GetNextCDJID(album);
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
