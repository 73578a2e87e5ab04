#include "covers/folder_images.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string>

#include "platform/basic_text.h"
#include "platform/files.h"
#include "platform/windows_path.h"
#include "run/counted.h"
#include "run/log.h"
#include "run/paths.h"
#include "run/sound_files.h"

namespace quillon {
namespace {

// The best comes first.
constexpr std::array<std::string_view, 4> Names{"cover", "folder", "front", "albumart"};
constexpr std::array<std::string_view, 3> Extensions{".jpg", ".jpeg", ".png"};
constexpr std::size_t NoRank = Names.size() * Extensions.size();

enum class FolderImageStep { Look = 4 };

/// How good a cover a file of this name is: 0 is the best; NoRank for one that is none.
std::size_t RankOf(std::string_view fileName) {
    const std::string name = LowerCase(fileName);
    for (std::size_t i = 0; i < Names.size(); ++i) {
        if (!name.starts_with(Names.at(i))) continue;
        const auto* const extension =
            std::ranges::find(Extensions, std::string_view(name).substr(Names.at(i).size()));
        if (extension != Extensions.end())
            return i * Extensions.size() + static_cast<std::size_t>(extension - Extensions.begin());
    }
    return NoRank;
}

/// The folder of the album's first song; "" where it has none.
std::string FolderOfSongs(Run& run, const AlbumRow& album) {
    const TrackRow* first = nullptr;
    for (const TrackRow* const track : run.TheLibrary().TracksOf(album.cdjid)) {
        if (track->isGone || !IsSoundFile(track->soundFile.Text())) continue;
        if (first == nullptr || track->number.Value() < first->number.Value()) first = track;
    }
    if (first == nullptr) return "";
    return std::string(ParentFolder(first->soundFile.Text()));
}

/// The path of the best image in the folder; "" where it has none.
std::string BestImageIn(Run& run, const std::string& folder) {
    const Listing<FileEntry> files = run.files.FilesIn(folder);
    const FileEntry* best = nullptr;
    for (const FileEntry& file : files) {
        const std::size_t rank = RankOf(file.name);
        if (rank < NoRank && (best == nullptr || rank < RankOf(best->name))) best = &file;
    }
    return best == nullptr ? "" : best->path;
}

void TakeFolderImage(Run& run, AlbumRow& album) {
    const std::string present = album.imageFile;
    if (!present.empty() && run.files.FileExists(present)) return;
    const std::string folder = FolderOfSongs(run, album);
    // A drive that is away takes its folders with it.
    if (folder.empty() || !run.files.FolderExists(folder)) return;
    const std::string image = BestImageIn(run, folder);
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

bool IsFolderImage(std::string_view fileName) {
    return RankOf(fileName) < NoRank;
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
}

}  // namespace quillon
