#include "covers/folder_images.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "covers/embedded_art.h"
#include "platform/basic_text.h"
#include "platform/files.h"
#include "platform/windows_path.h"
#include "run/counted.h"
#include "run/disc_folders.h"
#include "run/folder_images.h"
#include "run/log.h"
#include "run/paths.h"
#include "run/sound_files.h"
#include "tags/known_tags.h"

namespace quillon {
namespace {

enum class FolderImageStep { Look = 4, KeepTags = 5 };

/// The album's songs that are music files, by number.
std::vector<const TrackRow*> SongsOf(Run& run, const AlbumRow& album) {
    std::vector<const TrackRow*> songs;
    for (const TrackRow* const track : run.TheLibrary().TracksOf(album.cdjid)) {
        if (!track->isGone && IsSoundFile(track->soundFile.Text())) songs.push_back(track);
    }
    std::ranges::stable_sort(songs, {},
                             [](const TrackRow* track) { return track->number.Value(); });
    return songs;
}

/// Where an album's image may lie: in the folder of its first song; where that is one of a disc,
/// first in the album's own. What lies beside all songs of the flat layout belongs to none of its
/// albums.
std::vector<std::string> ImageFoldersOf(const Run& run, const AlbumRow& album,
                                        const std::string& folder) {
    if (run.settings.FlatStructure) return {};
    const std::string_view name = LastName(folder);
    const bool isDisc =
        run.modern.joinsDiscs && DiscOfFolder(name) && !EqualIgnoringCase(name, album.title.Text());
    if (!isDisc) return {folder};
    return {std::string(ParentFolder(folder)), folder};
}

/// The path of the best image in the folder; "" where it has none. The walk has seen most folders.
std::string ImageIn(Run& run, const std::string& folder) {
    if (std::optional<std::string> seen = run.folderImages.Find(folder)) return *std::move(seen);
    return BestFolderImage(run.files.FilesIn(folder).entries);
}

bool IsThere(const Run& run, const std::string& folder) {
    return run.folderImages.Find(folder) || run.files.FolderExists(folder);
}

void TakeFolderImage(Run& run, AlbumRow& album) {
    const std::string present = album.imageFile;
    if (!present.empty() && run.files.FileExists(present)) return;
    const std::vector<const TrackRow*> songs = SongsOf(run, album);
    if (songs.empty()) return;
    const std::string songFolder(ParentFolder(songs.front()->soundFile));
    if (songFolder.empty()) return;
    std::string image;
    const std::vector<std::string> folders = ImageFoldersOf(run, album, songFolder);
    // A drive that is away takes its folders with it.
    if (folders.empty() && !IsThere(run, songFolder)) return;
    for (const std::string& folder : folders) {
        if (!IsThere(run, folder)) return;
        image = ImageIn(run, folder);
        if (!image.empty()) break;
    }
    if (image.empty()) image = TakeEmbeddedArt(run, album, songs);
    if (image == present) return;
    SetImageFile(run, album, image);
    if (!image.empty())
        WriteLog(run, LogSource, "Album Cover " + image + " added to Albums database");
}

}  // namespace

void SetImageFile(Run& run, AlbumRow& album, const std::string& path) {
    const std::string before = album.imageFile;
    if (before == path) return;
    const FieldValue image{"ImageFile", path};
    run.TheLibrary().Change(album, std::span(&image, 1));
    RunCounts& counts = run.counts;
    ++(before.empty() ? counts.imagesAdded
       : path.empty() ? counts.imagesRemoved
                      : counts.imagesChanged);
}

void TakeFolderImages(Run& run, Steps& steps) {
    for (AlbumRow& album : Counted(run, run.TheLibrary().Albums())) {
        run.ProcessEvents();
        if (run.AbortRequested) return;
        const bool concerns = !album.isGone && (album.imageFile.IsEmpty() ||
                                                IsFolderImage(LastName(album.imageFile.Text())));
        if (!concerns) continue;
        steps.Concerning(album.artist.Text() + '\\' + album.title.Text());
        steps.Try(FolderImageStep::Look, [&] { TakeFolderImage(run, album); });
    }
    steps.Concerning({});
    if (run.knownTags) steps.Try(FolderImageStep::KeepTags, [&run] { run.knownTags->Save(); });
}

}  // namespace quillon
