#include "reconcile/folder_walk.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "database/schema.h"
#include "id3/tag_reader.h"
#include "platform/basic_text.h"
#include "reconcile/album.h"
#include "reconcile/file_list.h"
#include "reconcile/flat.h"
#include "reconcile/tracks.h"
#include "reconcile/walk.h"
#include "run/counted.h"
#include "run/excluded_artists.h"
#include "run/sound_files.h"
#include "run/steps.h"

namespace quillon {
namespace {

bool HoldsQuote(const ListedFile& file) {
    return file.Name.find('"') != std::string::npos;
}

/// Brings one album into line.
void ProcessAlbum(Walk& walk, Album album, FileList files) {
    album.cdjid = ProcessOneAlbum(walk, album.artist, album.title, album.trackCount);
    if (album.trackCount == 0) return;
    walk.musicSeen = true;
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

/// The tree layout: artist folders that hold album folders that hold files.
class TreeWalk {
  public:
    explicit TreeWalk(Walk& walk)
        : walk_(walk), steps_(walk.run, "RefreshDatabaseFolder"), excluded_(walk.run) {}

    void Refresh(const FolderEntry& topFolder) {
        Run& run = walk_.run;
        int counter = 0;
        for (const FolderEntry& artist : Counted(run, SubFolders(topFolder, ""))) {
            ++counter;
            run.ShowItem(std::to_string(counter) +
                         ". Reconcile Folder Tracks with Database for Artist " + artist.name);
            if (run.AbortRequested) return;
            if (excluded_.Contains(artist.name)) {
                walk_.musicSeen = true;
            } else {
                RefreshArtist(artist);
            }
        }
    }

  private:
    void RefreshArtist(const FolderEntry& artist) {
        for (const FolderEntry& album : SubFolders(artist, artist.name))
            RefreshAlbum(artist.name, album);
    }

    void RefreshAlbum(const std::string& artist, const FolderEntry& folder) {
        Album album{.artist = artist, .title = folder.name, .trackCount = 0, .cdjid = {}};
        FileList files;
        bool seenWhole = false;
        const bool listed = steps_.Try(2, [&] {
            const Listing<FileEntry> found = walk_.run.files.FilesIn(folder.path);
            seenWhole = std::none_of(found.unseen.begin(), found.unseen.end(), IsSoundFile);
            files = ProcessAlbumTracks(found.entries);
            album.trackCount = FileCount(files.size());
        });
        // Numbers handed out while a song is out of sight would be those of its neighbours.
        if (!listed || !seenWhole) {
            walk_.unlisted.push_back({folder.path, artist, folder.name});
            return;
        }
        ProcessAlbum(walk_, std::move(album), std::move(files));
    }

    /// The folders in a root (`artist` is "") or in an artist's folder.
    std::vector<FolderEntry> SubFolders(const FolderEntry& folder, const std::string& artist) {
        Listing<FolderEntry> folders;
        if (!steps_.Try(2, [&] { folders = walk_.run.files.SubFolders(folder.path); }))
            walk_.unlisted.push_back({folder.path, artist, ""});
        for (const std::string& path : folders.unseen) {
            const std::string name = path.substr(path.rfind('\\') + 1);
            const bool isArtist = artist.empty();
            walk_.unlisted.push_back({path, isArtist ? name : artist, isArtist ? "" : name});
        }
        return std::move(folders.entries);
    }

    Walk& walk_;
    Steps steps_;
    ExcludedArtists excluded_;
};

/// The flat layout: files of all artists side by side, their names beginning with the artist.
class FlatWalk {
  public:
    explicit FlatWalk(Walk& walk) : walk_(walk), steps_(walk.run, "RefreshDatabaseFolder") {}

    void Refresh(const FolderEntry& topFolder) {
        const bool listed = steps_.Try(3, [&] {
            Listing<FileEntry> files = walk_.run.files.FilesIn(topFolder.path);
            for (const std::string& path : files.unseen)
                walk_.unlisted.push_back({path, "", ""});
            for (FileEntry& file : Counted(walk_.run, files)) {
                if (IsSoundFile(file.name)) walk_.musicSeen = true;
                Group(std::move(file));
            }
        });
        if (!listed) {
            walk_.unlisted.push_back({topFolder.path, "", ""});
            return;
        }
        for (const auto& [key, flat] : Counted(walk_.run, albums_))
            RefreshAlbum(key, flat);
    }

  private:
    void Group(FileEntry file) {
        const std::size_t separator = file.name.find('_');
        if (separator == std::string::npos) return;
        std::string key = file.name.substr(0, separator) + '_' + AlbumOf(file);
        const auto [place, isNew] = places_.try_emplace(key, albums_.size());
        if (isNew) albums_.emplace_back(std::move(key), Flat());
        albums_[place->second].second.Add(std::move(file));
    }

    std::string AlbumOf(const FileEntry& file) {
        constexpr std::size_t AlbumPiece = 3;
        std::vector<std::string> pieces = Split(ReadID3(walk_.run, file.path), "|");
        return pieces.size() > AlbumPiece ? std::move(pieces[AlbumPiece]) : "Unknown";
    }

    /// An album's title is cut at an "_" of its own; albums of existing databases are named so.
    void RefreshAlbum(const std::string& key, const Flat& flat) {
        const std::vector<std::string> parts = Split(key, "_");
        Album album{.artist = parts[0], .title = parts[1], .trackCount = 0, .cdjid = {}};
        FileList files = ProcessFlatTracks(flat.GetNames());
        if (!steps_.Try(3, [&] { album.trackCount = flat.Size(); })) {
            for (const ListedFile& file : files)
                walk_.unlisted.push_back({file.Name, album.artist, album.title});
            return;
        }
        ProcessAlbum(walk_, std::move(album), std::move(files));
    }

    Walk& walk_;
    Steps steps_;
    std::vector<std::pair<std::string, Flat>> albums_;     ///< by key, in the order of their files
    std::unordered_map<std::string, std::size_t> places_;  ///< key to position in albums_
};

}  // namespace

void RefreshDatabaseFolder(Walk& walk, const FolderEntry& topFolder) {
    Steps steps(walk.run, "RefreshDatabaseFolder");
    const bool opened = steps.Try(1, [&walk] {
        walk.albums = walk.run.connection->OpenTable("Albums");
        walk.tracks = walk.run.connection->OpenTable("Tracks");
    });
    if (!opened) {
        walk.unlisted.push_back({topFolder.path, "", ""});
    } else if (walk.run.settings.FlatStructure) {
        FlatWalk(walk).Refresh(topFolder);
    } else {
        TreeWalk(walk).Refresh(topFolder);
    }
}

}  // namespace quillon
