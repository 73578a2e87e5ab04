#include "covers/scan_covers.h"

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "platform/basic_text.h"
#include "platform/failure.h"
#include "platform/files.h"
#include "run/counted.h"
#include "run/folder_images.h"
#include "run/host_settings.h"
#include "run/paths.h"
#include "run/run.h"
#include "run/sound_files.h"

namespace quillon {
namespace {

bool HasExtension(std::string_view name, std::string_view extension) {
    return LowerCase(Right(name, extension.size())) == extension && !IsCompanion(name);
}

std::string WithoutExtension(std::string_view name, std::string_view extension) {
    return std::string(name.substr(0, name.size() - extension.size()));
}

void RequireFolder(Run& run, const std::string& folder) {
    if (!run.files.FolderExists(folder)) throw Failure(FailureNumber::PathNotFound, folder);
}

/// Adds images of an album's name that do not stand beside one of these other kinds: such come from
/// the tags of songs, and with songs that are added.
void AddWithout(Run& run, const Listing<FileEntry>& files, std::string_view extension,
                std::initializer_list<const char*> others, CoverSet& covers) {
    for (const FileEntry& file : files) {
        const bool isNamed = file.name.find(" - ") != std::string::npos;
        if (!isNamed || !HasExtension(file.name, extension)) continue;
        const std::string stem = WithoutExtension(file.name, extension);
        const bool hasOther = std::ranges::any_of(others, [&](const char* other) {
            return findExactRecord(run, covers, stem + other) != nullptr;
        });
        if (!hasOther) covers.Add(file.name, file.path);
    }
}

/// The last four characters alone count: ".jpeg" is no extension of a cover here. All JPEG images
/// come first: so a GIF image of the same name is reported as superfluous, wherever the folder's
/// order has it.
void AddCoverFolder(Run& run, const std::string& folder, CoverSet& covers) {
    RequireFolder(run, folder);
    const Listing<FileEntry> files = run.files.FilesIn(folder);
    if (!files.unseen.empty()) covers.NoteUnseen();
    for (const FileEntry& file : files) {
        if (HasExtension(file.name, ".jpg")) covers.Add(file.name, file.path);
    }
    for (const FileEntry& file : files) {
        if (!HasExtension(file.name, ".gif")) continue;
        const std::string twin = WithoutExtension(file.name, ".gif") + ".jpg";
        if (findExactRecord(run, covers, twin) == nullptr) covers.Add(file.name, file.path);
    }
    if (!run.modern.takesFolderImages) return;
    AddWithout(run, files, ".jpeg", {".jpg", ".gif"}, covers);
    AddWithout(run, files, ".png", {".jpg", ".gif", ".jpeg"}, covers);
}

/// Here a GIF image stands beside a JPEG image of its name: people who keep covers with the albums
/// have both in the database.
void AddLibraryTree(Run& run, const std::string& reservedFolder, CoverSet& covers) {
    RequireFolder(run, run.settings.LibraryRoot);
    const auto noteUnseen = [&covers](const auto& listing) {
        if (!listing.unseen.empty()) covers.NoteUnseen();
    };
    const Listing<FolderEntry> artists = run.files.SubFolders(run.settings.LibraryRoot);
    noteUnseen(artists);
    for (const FolderEntry& artist : Counted(run, artists)) {
        run.ProcessEvents();
        const Listing<FolderEntry> albums = run.files.SubFolders(artist.path);
        noteUnseen(albums);
        for (const FolderEntry& album : albums) {
            if (EqualIgnoringCase(album.name, reservedFolder)) continue;
            const Listing<FileEntry> files = run.files.FilesIn(album.path);
            noteUnseen(files);
            for (const FileEntry& file : files) {
                const bool isAlbums = run.modern.takesFolderImages && IsFolderImage(file.name);
                if (!isAlbums &&
                    (HasExtension(file.name, ".jpg") || HasExtension(file.name, ".gif")))
                    covers.Add(file.name, file.path);
            }
        }
    }
}

}  // namespace

std::optional<CoverSet> ScanCovers(Run& run) {
    const std::string& coverFolder = run.settings.AlbumCoverFolder;
    const CoverTreeScan tree = ReadCoverTreeScan(run.host);
    const bool usesFolder = NamesFolder(coverFolder);
    const bool usesTree = tree.ScanLibrary && !run.settings.LibraryRoot.empty();

    CoverSet covers;
    run.ProcessEvents();
    if (run.AbortRequested) return std::nullopt;
    if (usesFolder) AddCoverFolder(run, coverFolder, covers);
    if (usesFolder && covers.IsEmpty()) covers.NoteEmptyFolder(coverFolder);
    run.ProcessEvents();
    if (run.AbortRequested) return std::nullopt;
    const std::size_t fromFolder = covers.Size();
    if (usesTree) AddLibraryTree(run, tree.ReservedFolder, covers);
    if (usesTree && covers.Size() == fromFolder) covers.NoteEmptyFolder(run.settings.LibraryRoot);
    if (!usesFolder && !usesTree) return std::nullopt;
    return covers;
}

}  // namespace quillon
