#include "covers/refresh_album_covers.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "covers/folder_images.h"
#include "covers/scan_covers.h"
#include "database/sql.h"
#include "library/library.h"
#include "platform/basic_text.h"
#include "run/counted.h"
#include "run/folder_images.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class CoverStep { Scan = 1, Compare = 2, AddNew = 3 };

constexpr std::string_view Placeholder = "notfnd.jpg";

std::string_view FileName(std::string_view path) {
    const std::size_t backslash = path.rfind('\\');
    return backslash == std::string_view::npos ? path : path.substr(backslash + 1);
}

/// Whether an album that points at this image, which was not found, loses it.
bool MayEmpty(const Run& run, const CoverSet& covers, std::string_view image) {
    if (!covers.IsWhole()) return false;
    if (!run.removals.limits.Brake || run.removals.allAllowed) return true;
    return !covers.IsEmpty() && !covers.IsInEmptyFolder(image);
}

void TellKeptImages(Run& run, const CoverSet& covers, std::size_t kept) {
    const bool isOne = kept == 1;
    LogError(run, LogSource,
             "Album Covers: " + std::to_string(kept) +
                 (isOne ? " album keeps its image, which was"
                        : " albums keep their images, which were") +
                 " not found, because " +
                 (covers.IsWhole() ? "there is no image at all in " + covers.EmptyFolders().front()
                                   : "not all could be looked at") +
                 ". See to the drives and folders and run again");
}

/// Whether the album's image belongs to its folder and is dealt with there.
bool HasFolderImage(const Run& run, const AlbumRow& album) {
    return run.modern.takesFolderImages && IsFolderImage(FileName(album.imageFile.Text()));
}

void CompareAlbums(Run& run, Steps& steps, CoverSet& covers) {
    std::size_t kept = 0;
    for (AlbumRow& album : Counted(run, run.TheLibrary().Albums())) {
        run.ProcessEvents();
        if (album.isGone || album.imageFile.IsEmpty() || HasFolderImage(run, album)) continue;
        const std::string& imageFile = album.imageFile;
        steps.Concerning(imageFile);
        Cover* const cover = findExactRecord(run, covers, FileName(imageFile));
        if (cover != nullptr) {
            cover->processed = true;
            SetImageFile(run, album, cover->path);
        } else if (MayEmpty(run, covers, imageFile)) {
            SetImageFile(run, album, "");
        } else {
            ++kept;
        }
    }
    if (kept > 0) TellKeptImages(run, covers, kept);
}

/// What a cover's file name says.
struct CoverTitle {
    std::string artist, album;
};

/// If there are several separators, the first one is used: more titles than artists contain one.
std::optional<CoverTitle> ReadCoverTitle(std::string_view name) {
    constexpr std::string_view Separator = " - ";
    const std::size_t extension = LowerCase(name).ends_with(".jpeg") ? 5 : 4;
    const std::size_t position = name.find(Separator);
    if (position == std::string_view::npos) return std::nullopt;
    std::string_view album = name.substr(position + Separator.size());
    album.remove_suffix(extension);
    return CoverTitle{std::string(Trim(name.substr(0, position))), std::string(Trim(album))};
}

void LogCover(Run& run, const Cover& cover, std::string_view statement) {
    WriteLog(run, LogSource, "Album Cover " + cover.name + " " + std::string(statement));
}

void AddCover(Run& run, const Cover& cover) {
    const std::optional<CoverTitle> title = ReadCoverTitle(cover.name);
    if (!title) {
        if (!EqualIgnoringCase(cover.name, Placeholder))
            LogCover(run, cover, "filename is not of correct Artist - Album format");
        return;
    }
    RefuseQuote(title->artist);
    RefuseQuote(title->album);
    const std::vector<AlbumRow*> found = run.TheLibrary().AlbumsNamed(title->artist, title->album);
    if (found.empty()) {
        LogCover(run, cover,
                 "is in directory but does not have this artist/album in Albums database");
        return;
    }
    AlbumRow& album = *found.front();
    const std::string& present = album.imageFile;
    if (!present.empty() && !HasFolderImage(run, album)) {
        if (!EqualIgnoringCase(present, cover.path))
            LogCover(run, cover,
                     "is in directory but does not match " + present + " in Albums database");
    } else if (!run.TheLibrary().IsStored(album)) {
        // What was read at the beginning may have gone.
        WriteLog(run, LogSource,
                 "Album cover record ID " + std::to_string(static_cast<std::int64_t>(album.id)) +
                     " could not be found on second read");
    } else {
        SetImageFile(run, album, cover.path);
        LogCover(run, cover, "added to Albums database");
    }
}

void AddNewCovers(Run& run, Steps& steps, const CoverSet& covers) {
    for (const Cover& cover : Counted(run, covers.InOrder())) {
        run.ProcessEvents();
        steps.Concerning(cover.path);
        if (!cover.processed) AddCover(run, cover);
    }
}

/// Ties the covers that were found to the albums that they are named after; false when the work is
/// to end.
bool TieCovers(Run& run, Steps& steps, CoverSet& covers) {
    run.ShowItem("2. Compare Albums with Database");
    if (run.AbortRequested) return false;
    if (!steps.Try(CoverStep::Compare, [&] {
            const Share share(run, 0, 0.5);
            CompareAlbums(run, steps, covers);
        }))
        return false;
    run.ShowItem("3. Add New Covers to Database");
    if (run.AbortRequested) return false;
    steps.Concerning({});
    return steps.Try(CoverStep::AddNew, [&] {
        const Share share(run, 0.5, 1);
        AddNewCovers(run, steps, covers);
    });
}

}  // namespace

void RefreshAlbumCovers(Run& run) {
    Steps steps(run, "Refresh Album Covers Error:");
    std::optional<CoverSet> covers;
    run.ShowItem("1. Scan Albums from Folder");
    const auto isThere = [](const AlbumRow& album) { return !album.isGone; };
    const bool scanned = steps.Try(CoverStep::Scan, [&] {
        const Share share(run, 0, 0.4);
        if (std::ranges::any_of(run.TheLibrary().Albums(), isThere)) covers = ScanCovers(run);
    });
    if (!scanned) return;
    if (covers) {
        const Share share(run, 0.4, run.modern.takesFolderImages ? 0.8 : 1);
        if (!TieCovers(run, steps, *covers)) return;
    }
    if (!run.modern.takesFolderImages || run.AbortRequested) return;
    run.ShowItem("4. Look for Images in Album Folders");
    const Share share(run, 0.8, 1);
    TakeFolderImages(run, steps);
}

}  // namespace quillon
