#include "reconcile/album.h"

#include <span>

#include "database/schema.h"
#include "database/sql.h"
#include "platform/clock.h"
#include "reconcile/new_rows.h"
#include "reconcile/walk.h"
#include "run/log.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class AlbumStep { FindOrAdd = 2 };

/// Gives the album an identifier. Without one its tracks would have no album and be added again in
/// each run. Returns it, "" when there is none to be had, which is logged.
std::string GiveIdentifier(Walk& walk, AlbumRow& row, const std::string& album) {
    std::string cdjid = walk.sequence.GetNextCDJID(album);
    if (cdjid.empty()) return "";
    const FieldValue identifier{"CDJID", cdjid};
    walk.library.Change(row, std::span(&identifier, 1));
    walk.sequence.Taken(cdjid);
    WriteLog(walk.run, LogSource, "Album " + album + " had no CDJID, it has got " + cdjid);
    return cdjid;
}

/// Returns the identifier, "" when the album has none.
std::string UpdateAlbum(Walk& walk, AlbumRow& row, const std::string& album,
                        std::int16_t trackCount) {
    const bool hadIdentifier = !row.cdjid.IsEmpty();
    if (!hadIdentifier && trackCount > 0 && GiveIdentifier(walk, row, album).empty()) return "";
    row.count.Set(trackCount);
    if (trackCount > 0) {
        const bool same = row.count.Before() == RowNumber(trackCount);
        const bool isUnchanged = same && hadIdentifier && !walk.renamed.contains(row.id);
        ++(isUnchanged ? walk.run.counts.albumsUnchanged : walk.run.counts.albumsChanged);
        if (!same && hadIdentifier && !walk.renamed.contains(row.id)) ++walk.recounted;
    }
    return row.cdjid;
}

void AddAlbum(Walk& walk, std::string_view artist, std::string_view title, std::int16_t trackCount,
              const std::string& cdjid) {
    walk.library.AddAlbum(FieldsOf(walk.run.clock.Now(), NewAlbum{.cdjid = cdjid,
                                                                  .artist = std::string(artist),
                                                                  .title = std::string(title),
                                                                  .trackCount = trackCount}));
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
    steps.Try(AlbumStep::FindOrAdd, [&] {
        RefuseQuote(title);
        RefuseQuote(artist);
        if (AlbumRow* const row = walk.library.FindAlbum(artist, title)) {
            const std::string known = UpdateAlbum(walk, *row, album, trackCount);
            if (!known.empty()) cdjid = known;
        } else if (trackCount > 0) {
            const std::string next = walk.sequence.GetNextCDJID(album);
            if (next.empty()) return;
            AddAlbum(walk, artist, title, trackCount, next);
            cdjid = next;
        }
    });
    return cdjid;
}

}  // namespace quillon
