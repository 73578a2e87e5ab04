#include "reconcile/walked_album.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "database/album_key.h"
#include "database/schema.h"
#include "database/sql.h"
#include "reconcile/album.h"
#include "reconcile/tracks.h"
#include "run/sound_files.h"

namespace quillon {
namespace {

bool HoldsQuote(const ListedFile& file) {
    return file.Name.find('"') != std::string::npos;
}

}  // namespace

void ProcessAlbum(Walk& walk, Album album, FileList files) {
    if (!walk.hidden.empty() && walk.hidden.contains(AlbumKey(album.artist, album.title))) {
        for (const ListedFile& file : files)
            walk.unlisted.push_back({file.Name, album.artist, album.title});
        return;
    }
    album.cdjid = ProcessOneAlbum(walk, album.artist, album.title, album.trackCount);
    if (album.trackCount == 0) return;
    // The album could not be matched, and it is logged why. Files whose own look-up would work keep
    // their rows as they are; the others run into the same refusal, each with its log line.
    if (album.cdjid == NoCdjid) {
        for (const ListedFile& file : files) {
            if (!HoldsQuote(file)) walk.unlisted.push_back({file.Name, album.artist, album.title});
        }
        if (std::none_of(files.begin(), files.end(), HoldsQuote)) return;
    }
    ProcessTracks(walk, album, files);
}

bool HideAlbumsOf(Walk& walk, const std::vector<std::string>& unseen) {
    bool found = false;
    for (const std::string& path : unseen) {
        if (!IsSoundFile(path)) continue;
        const std::unique_ptr<RecordSet> album = walk.run.connection->Query(
            "SELECT Albums.Artist, Albums.Title "
            "FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID "
            "WHERE (((Tracks.SoundFile) Like " +
            Quoted("%" + path) + ") AND ((Albums.Player)=1001))");
        if (album->IsEmpty()) continue;
        const std::string artist = album->Text("Artist"), title = album->Text("Title");
        walk.hidden.insert(AlbumKey(artist, title));
        walk.unlisted.push_back({path, artist, title});
        found = true;
    }
    return found;
}

void HideAlbumsBelow(Walk& walk, const std::vector<std::string>& folders) {
    if (folders.empty()) return;
    walk.hidden.merge(AlbumsBelow(*walk.run.connection, folders));
}

}  // namespace quillon
