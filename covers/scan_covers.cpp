#include "covers/scan_covers.h"

#include <string>
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

constexpr std::size_t ExtensionLength = 4;

/// The last four characters alone: ".jpeg" is no extension of a cover.
bool HasExtension(std::string_view name, std::string_view extension) {
    return LowerCase(Right(name, ExtensionLength)) == extension && !IsCompanion(name);
}

std::string_view WithoutExtension(std::string_view name) {
    return name.substr(0, name.size() - ExtensionLength);
}

void RequireFolder(Run& run, const std::string& folder) {
    if (!run.files.FolderExists(folder)) throw Failure(FailureNumber::PathNotFound, folder);
}

/// All JPEG images come first: so a GIF image of the same name is reported as superfluous, wherever
/// the folder's order has it.
void AddCoverFolder(Run& run, const std::string& folder, CoverSet& covers) {
    RequireFolder(run, folder);
    const Listing<FileEntry> files = run.files.FilesIn(folder);
    if (!files.unseen.empty()) covers.NoteUnseen();
    for (const FileEntry& file : files) {
        if (HasExtension(file.name, ".jpg")) covers.Add(file.name, file.path);
    }
    for (const FileEntry& file : files) {
        if (!HasExtension(file.name, ".gif")) continue;
        const std::string twin = std::string(WithoutExtension(file.name)) + ".jpg";
        if (findExactRecord(run, covers, twin) == nullptr) covers.Add(file.name, file.path);
    }
    if (!run.modern.takesFolderImages) return;
    // Such come from the tags of songs.
    for (const FileEntry& file : files) {
        const bool isNamed = file.name.find(" - ") != std::string::npos;
        if (!isNamed || !HasExtension(file.name, ".png")) continue;
        const std::string stem(WithoutExtension(file.name));
        const bool isFirst = findExactRecord(run, covers, stem + ".jpg") == nullptr &&
                             findExactRecord(run, covers, stem + ".gif") == nullptr;
        if (isFirst) covers.Add(file.name, file.path);
    }
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
