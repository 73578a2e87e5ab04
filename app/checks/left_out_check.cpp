#include "app/checks/left_out_check.h"

#include <algorithm>
#include <fmt/format.h>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "driver/library_folders.h"
#include "driver/modes.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "reconcile/left_out_music.h"
#include "run/disc_folders.h"
#include "run/excluded_artists.h"
#include "run/paths.h"

namespace quillon {
namespace {

/// What cannot be listed is reported elsewhere.
Listing<FolderEntry> SubFolders(Files& files, const std::string& folder) try {
    return files.SubFolders(folder);
} catch (const Failure&) {
    return {};
}

std::vector<FolderEntry> LibraryFolders(Files& files, const Settings& settings) try {
    return BuildLibraryFolders(files, settings);
} catch (const Failure&) {
    return {};
}

/// What lies in an album folder, or in one of its disc folders where those belong to it.
void LookAtAlbum(Files& files, const std::string& folder, bool joinsDiscs, LeftOutMusic& music) {
    FolderNames names = files.NamesIn(folder);
    for (const std::string& name : names.files)
        music.NoteOther(folder, name);
    if (joinsDiscs) {
        for (const DiscFolder& disc : TakeDiscFolders(folder, names.folders))
            LookAtAlbum(files, disc.path, false, music);
    }
    music.NoteDeeper(folder, names.folders);
}

void LookAtTree(Files& files, const ExcludedArtists& excluded, const std::string& root,
                bool joinsDiscs, LeftOutMusic& music) {
    const Listing<FolderEntry> artists = SubFolders(files, root);
    music.NoteLoose(root, artists.others);
    for (const FolderEntry& artist : artists) {
        if (excluded.Contains(artist.name)) continue;
        const Listing<FolderEntry> albums = SubFolders(files, artist.path);
        music.NoteLoose(artist.path, albums.others);
        for (const FolderEntry& album : albums)
            LookAtAlbum(files, album.path, joinsDiscs, music);
    }
}

void LookAtFlat(Files& files, const std::string& root, LeftOutMusic& music) {
    const FolderNames names = files.NamesIn(root);
    for (const std::string& name : names.files)
        music.NoteFlat(root, name);
    music.NoteDeeper(root, names.folders);
}

LeftOut FindLeftOut(Files& files, const Settings& settings, bool joinsDiscs) {
    LeftOut found;
    LeftOutMusic music(files, found);
    const ExcludedArtists excluded(Split(settings.ExcludeList, ","));
    if (settings.LibraryDepthOption)
        music.NoteLoose(settings.LibraryRoot, files.NamesIn(settings.LibraryRoot).files);
    std::unordered_set<std::string> seen;
    for (const FolderEntry& root : LibraryFolders(files, settings)) {
        if (!seen.insert(UpperCase(root.path)).second) continue;
        if (settings.FlatStructure) {
            LookAtFlat(files, root.path, music);
        } else {
            LookAtTree(files, excluded, root.path, joinsDiscs, music);
        }
    }
    return found;
}

/// "9 in folders below album folders (D:\Music\X\Y\CD1)", behind what `text` has already.
void Append(std::string& text, const LeftOut& found, LeftOutFor reason, std::string_view where) {
    const LeftOut::Group& group = found.Of(reason);
    if (group.files == 0) return;
    text += fmt::format("{}{} {} (", text.empty() ? "" : ", ", group.files, where);
    for (std::size_t i = 0; i < group.paths.size(); ++i)
        text += (i == 0 ? "" : ", ") + group.paths[i];
    if (group.places > group.paths.size())
        text += fmt::format(" and {} more", group.places - group.paths.size());
    text += ')';
}

/// Whether music is left out for nothing but a key that is off.
bool HoldsDiscs(const LeftOut& found) {
    return std::ranges::any_of(
        found.Of(LeftOutFor::DeeperFolder).paths,
        [](const std::string& path) { return DiscOfFolder(LastName(path)).has_value(); });
}

}  // namespace

void CheckLeftOut(Files& files, const Settings& settings, const ModernMusic& modern,
                  Findings& findings) {
    if (settings.LibraryRoot.empty() || !WalksLibrary(settings)) return;
    const LeftOut found = FindLeftOut(files, settings, modern.joinsDiscs);
    const bool isFlat = settings.FlatStructure;
    if (found.Total() == 0) return;
    std::string text;
    Append(text, found, LeftOutFor::DeeperFolder,
           isFlat ? "in folders, where the flat layout does not look"
                  : "in folders below album folders");
    Append(text, found, LeftOutFor::NoAlbum,
           isFlat ? "without an \"_\" behind the artist's name" : "in no album folder");
    Append(text, found, LeftOutFor::OtherType, "of another type than MP3");
    const bool wantsDiscs = !isFlat && !modern.joinsDiscs && HoldsDiscs(found);
    findings.Caution(fmt::format(
        "{} left out, since the layout has no place for {}: {}. {}{}",
        found.Total() == 1 ? "1 music file is" : fmt::format("{} music files are", found.Total()),
        found.Total() == 1 ? "it" : "them", text,
        isFlat ? "Only MP3 files named Artist_Title.mp3, directly in the library folder, are added"
               : "Only MP3 files directly in an album folder (Artist\\Album\\Song.mp3) are added",
        wantsDiscs ? ". Discs=1 in [Library] of host.ini adds folders such as CD1 to their albums"
                   : ""));
}

}  // namespace quillon
