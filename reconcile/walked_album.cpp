#include "reconcile/walked_album.h"

#include <algorithm>
#include <utility>

#include "database/album_key.h"
#include "database/schema.h"
#include "reconcile/album.h"
#include "reconcile/moved_music.h"
#include "reconcile/tracks.h"
#include "run/sound_files.h"
#include "run/steps.h"

namespace quillon {
namespace {

bool NameHoldsQuote(const ListedFile& file) {
    return file.Name.find('"') != std::string::npos;
}

}  // namespace

void ProcessAlbum(Walk& walk, Album album, FileList files) {
    if (!walk.hidden.empty() && walk.hidden.contains(AlbumKey(album.artist, album.title))) {
        for (const ListedFile& file : files)
            walk.unlisted.push_back({file.Name, album.artist, album.title});
        return;
    }
    if (walk.moved && walk.moved->HoldBack(album, files)) return;
    album.cdjid = ProcessOneAlbum(walk, album.artist, album.title, album.trackCount);
    if (album.trackCount == 0) return;
    // The album could not be matched, and it is logged why. Files whose own look-up would work keep
    // their rows as they are; the others run into the same refusal, each with its log line.
    if (album.cdjid == NoCdjid) {
        for (const ListedFile& file : files) {
            if (!NameHoldsQuote(file))
                walk.unlisted.push_back({file.Name, album.artist, album.title});
        }
        if (std::none_of(files.begin(), files.end(), NameHoldsQuote)) return;
    }
    ProcessTracks(walk, album, files);
    if (walk.moved) walk.moved->NoteSeen(files);
}

void SaveNowAndThen(Walk& walk) {
    constexpr double Pause = 5.0 / (24 * 60 * 60);
    const DateTime now = walk.run.clock.Now();
    if (now.days < walk.savedAt.days + Pause) return;
    walk.savedAt = now;
    Steps(walk.run, "RefreshDatabase").Try(RefreshStep::ChangeRows, [&walk] {
        walk.library.Save();
    });
}

bool HideAlbumsOf(Walk& walk, const std::vector<std::string>& unseen) {
    bool found = false;
    for (const std::string& path : unseen) {
        const TrackRow* const track = IsSoundFile(path) ? walk.library.FindTrack(path) : nullptr;
        const AlbumRow* const album = track == nullptr ? nullptr : walk.library.AlbumOf(*track);
        if (album == nullptr) continue;
        walk.hidden.insert(AlbumKey(album->artist, album->title));
        walk.unlisted.push_back({path, album->artist, album->title});
        found = true;
    }
    return found;
}

void HideAlbumsBelow(Walk& walk, const std::vector<std::string>& folders) {
    walk.hidden.merge(AlbumsBelow(walk.library, folders));
}

}  // namespace quillon
