#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "platform/basic_text.h"
#include "reconcile/file_list.h"
#include "reconcile/folder_walk.h"
#include "reconcile/left_out_music.h"
#include "reconcile/walk.h"
#include "reconcile/walked_album.h"
#include "run/counted.h"
#include "run/disc_folders.h"
#include "run/excluded_artists.h"
#include "run/log.h"
#include "run/steps.h"

namespace quillon {
namespace {

std::string NameOf(const std::string& path) {
    return path.substr(path.rfind('\\') + 1);
}

/// An artist's or an album's folder. Several may have one name: in different library folders, or in
/// spellings that differ in letter case alone.
struct Folder {
    FolderEntry entry;
    std::string artist;
    std::size_t root = 0;  ///< the library folder it lies in
};
using Namesakes = std::vector<Folder>;

class TreeWalk {
  public:
    explicit TreeWalk(Walk& walk)
        : walk_(walk),
          run_(walk.run),
          steps_(walk.run, "RefreshDatabaseFolder"),
          excluded_(walk.run),
          leftOut_(walk.run.files, walk.run.leftOut) {}

    void Refresh() {
        const std::vector<std::vector<std::string>> roots = ListRoots();
        std::size_t total = 0;
        for (const std::vector<std::string>& names : roots)
            total += names.size();
        SharesBySize shares(run_, total);
        for (const std::vector<std::string>& names : roots) {
            int counter = 0;
            const Share share = shares.Next(names.size());
            for (const std::string& name : Counted(run_, names)) {
                ++counter;
                run_.ShowItem(std::to_string(counter) +
                              ". Reconcile Folder Tracks with Database for Artist " + name);
                if (run_.AbortRequested) return;
                // All folders of one name are walked where the first of them is met.
                const auto artist = artists_.find(UpperCase(name));
                if (artist == artists_.end()) continue;
                RefreshArtist(artist->first, artist->second);
                SaveNowAndThen(walk_);
                artists_.erase(artist);
            }
        }
    }

  private:
    enum class Step { ListFolder = 2 };

    /// The names of the artist folders in each library folder. Those of one name come together in
    /// artists_.
    std::vector<std::vector<std::string>> ListRoots() {
        std::vector<std::vector<std::string>> roots;
        std::vector<std::string> unlistedRoots;
        for (std::size_t root = 0; root < walk_.roots.size(); ++root) {
            const std::string& path = walk_.roots[root].path;
            std::vector<std::string>& names = roots.emplace_back();
            Listing<FolderEntry> folders;
            if (!List(path, folders)) unlistedRoots.push_back(path);
            for (const std::string& unseen : folders.unseen) {
                walk_.unlisted.push_back({unseen, NameOf(unseen), ""});
                unseenArtists_.insert(UpperCase(NameOf(unseen)));
            }
            for (FolderEntry& folder : folders) {
                names.push_back(folder.name);
                artists_[UpperCase(folder.name)].push_back({std::move(folder), names.back(), root});
            }
        }
        for (const std::string& root : unlistedRoots)
            walk_.unlisted.push_back({root, "", ""});
        HideAlbumsBelow(walk_, unlistedRoots);
        return roots;
    }

    void RefreshArtist(const std::string& key, const Namesakes& folders) {
        if (excluded_.Contains(folders.front().artist)) {
            for (const Folder& folder : folders)
                walk_.roots[folder.root].hasMusic = true;
            return;
        }
        bool seenWhole = !unseenArtists_.contains(key);
        std::vector<std::pair<std::string, Namesakes>> albums;  ///< by key
        std::unordered_map<std::string, std::size_t> places;
        std::unordered_set<std::string> unseenTitles;
        for (const Folder& artist : folders) {
            Listing<FolderEntry> list;
            seenWhole &= List(artist.entry.path, list);
            for (const std::string& unseen : list.unseen) {
                walk_.unlisted.push_back({unseen, artist.artist, NameOf(unseen)});
                unseenTitles.insert(UpperCase(NameOf(unseen)));
            }
            for (FolderEntry& album : list) {
                std::string title = UpperCase(album.name);
                const auto [place, isNew] = places.try_emplace(title, albums.size());
                if (isNew) albums.emplace_back(std::move(title), Namesakes());
                albums[place->second].second.push_back(
                    {std::move(album), artist.artist, artist.root});
            }
        }
        // An album may be spread over all of them.
        if (!seenWhole) return Keep(folders, false);
        for (const auto& [title, albumFolders] : albums) {
            if (unseenTitles.contains(title) || !RefreshAlbum(albumFolders))
                Keep(albumFolders, true);
        }
    }

    /// False when something of it could not be looked at: then nothing has been done.
    bool RefreshAlbum(const Namesakes& folders) {
        Album album{.artist = folders.front().artist,
                    .title = folders.front().entry.name,
                    .trackCount = 0,
                    .cdjid = {}};
        FileList files;
        for (const Folder& folder : folders) {
            bool seenWhole = false;
            steps_.Concerning(folder.entry.path);
            const bool listed =
                steps_.Try(Step::ListFolder, [&] { seenWhole = AddFiles(folder, files); });
            if (!listed || !seenWhole) return false;
        }
        if (folders.size() > 1 && HaveTwins(files)) return false;
        if (!steps_.Try(Step::ListFolder, [&] { album.trackCount = FileCount(files.size()); }))
            return false;
        ProcessAlbum(walk_, std::move(album), std::move(files));
        return true;
    }

    /// Whether two folders whose names differ only in letter case hold a file of one name: the
    /// database has one path for both, so nobody can tell which of them it means.
    bool HaveTwins(const FileList& files) {
        std::unordered_map<std::string, const std::string*> paths;
        bool found = false;
        for (const ListedFile& file : files) {
            const auto [twin, isNew] = paths.try_emplace(LowerCase(file.Name), &file.Name);
            if (isNew) continue;
            found |= HideAlbumsOf(walk_, {file.Name});
            LogError(run_, LogSource,
                     "Left out, what it stands for is kept: " + file.Name +
                         " (only letter case tells its name from that of " + *twin->second +
                         "; rename one of the folders)");
        }
        return found;
    }

    /// False when a song of the library is out of sight there, or a whole disc.
    bool AddFiles(const Folder& folder, FileList& files) {
        std::vector<DiscFolder> discs;
        bool seenWhole = AddFilesIn({folder.entry.path, 0}, folder.root, files, &discs);
        for (const DiscFolder& disc : discs)
            seenWhole &= AddFilesIn(disc, folder.root, files, nullptr);
        return seenWhole;
    }

    /// Those directly in an album folder or in one of its disc folders; `discs` takes the disc
    /// folders in it.
    bool AddFilesIn(const DiscFolder& folder, std::size_t root, FileList& files,
                    std::vector<DiscFolder>* discs) {
        Listing<FileEntry> found = run_.files.FilesIn(folder.path);
        FileList songs = ProcessAlbumTracks(found.entries, folder.disc);
        if (!songs.empty()) walk_.roots[root].hasMusic = true;
        if (songs.size() < found.size()) {
            for (const FileEntry& file : found)
                leftOut_.NoteOther(folder.path, file.name);
        }
        if (run_.modern.takesFolderImages) run_.folderImages.Note(folder.path, found.entries);
        bool seenWhole = !HideAlbumsOf(walk_, found.unseen);
        if (discs != nullptr && run_.modern.joinsDiscs) {
            *discs = TakeDiscFolders(folder.path, found.others);
            seenWhole &= std::ranges::none_of(found.unseen, [](const std::string& path) {
                return DiscOfFolder(NameOf(path)).has_value();
            });
        }
        leftOut_.NoteDeeper(folder.path, found.others);
        Merge(files, std::move(songs));
        return seenWhole;
    }

    void Keep(const Namesakes& folders, bool areAlbums) {
        for (const Folder& folder : folders) {
            walk_.unlisted.push_back(
                {folder.entry.path, folder.artist, areAlbums ? folder.entry.name : ""});
        }
    }

    /// The folders in a library folder or in an artist's; false when it cannot be listed.
    bool List(const std::string& folder, Listing<FolderEntry>& list) {
        steps_.Concerning(folder);
        if (!steps_.Try(Step::ListFolder, [&] { list = run_.files.SubFolders(folder); }))
            return false;
        leftOut_.NoteLoose(folder, list.others);
        return true;
    }

    Walk& walk_;
    Run& run_;
    Steps steps_;
    ExcludedArtists excluded_;
    LeftOutMusic leftOut_;
    std::unordered_map<std::string, Namesakes> artists_;  ///< not yet walked
    std::unordered_set<std::string> unseenArtists_;
};

}  // namespace

void WalkTree(Walk& walk) {
    TreeWalk(walk).Refresh();
}

}  // namespace quillon
