#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "database/album_key.h"
#include "platform/basic_text.h"
#include "reconcile/file_list.h"
#include "reconcile/folder_walk.h"
#include "reconcile/left_out_music.h"
#include "reconcile/walk.h"
#include "reconcile/walked_album.h"
#include "run/counted.h"
#include "run/sound_files.h"
#include "run/steps.h"
#include "tags/tag_reader.h"

namespace quillon {
namespace {

class FlatWalk {
  public:
    explicit FlatWalk(Walk& walk)
        : walk_(walk),
          run_(walk.run),
          steps_(walk.run, "RefreshDatabaseFolder"),
          leftOut_(walk.run.files, walk.run.leftOut) {}

    void Refresh() {
        std::vector<std::string> unlistedRoots;
        SharesBySize shares(run_, 2 * walk_.roots.size());
        for (WalkedRoot& root : walk_.roots) {
            const Share share = shares.Next(1);
            steps_.Concerning(root.path);
            if (!steps_.Try(Step::GroupFiles, [&] { GroupFiles(root); }))
                unlistedRoots.push_back(root.path);
        }
        for (const std::string& root : unlistedRoots)
            walk_.unlisted.push_back({root, "", ""});
        HideAlbumsBelow(walk_, unlistedRoots);
        const Share share = shares.Next(walk_.roots.size());
        for (const Group& group : Counted(run_, groups_)) {
            RefreshAlbum(group);
            SaveNowAndThen(walk_);
        }
    }

  private:
    enum class Step { GroupFiles = 3 };
    struct Group {
        std::string artist, title;
        FileList files;
    };

    void GroupFiles(WalkedRoot& root) {
        Listing<FileEntry> files = run_.files.FilesIn(root.path);
        leftOut_.NoteDeeper(root.path, files.others);
        HideAlbumsOf(walk_, files.unseen);
        for (FileEntry& file : Counted(run_, files)) {
            leftOut_.NoteFlat(root.path, file.name);
            if (!IsSoundFile(file.name)) continue;
            root.hasMusic = true;
            if (file.name.find(FlatSeparator) != std::string::npos) Add(std::move(file));
        }
    }

    /// An album's title is cut at an "_" of its own; albums of existing databases are named so.
    void Add(FileEntry file) {
        std::string artist = file.name.substr(0, file.name.find(FlatSeparator));
        std::optional<Tag> tag = ReadID3(run_, file);
        if (!tag) {
            // Without its tag it would move to another album.
            HideAlbumsOf(walk_, {file.path});
            return;
        }
        std::string title = tag->IsThere() ? AsRecorded(*tag).album : "Unknown";
        title.resize(std::min(title.find(FlatSeparator), title.size()));
        const auto [place, isNew] = places_.try_emplace(AlbumKey(artist, title), groups_.size());
        if (isNew) groups_.push_back({std::move(artist), std::move(title), FileList()});
        groups_[place->second].files.push_back({.Name = std::move(file.path),
                                                .FileDate = file.modified,
                                                .Size = file.size,
                                                .Changed = file.changed,
                                                .Tag = TrackTagOf(*std::move(tag))});
    }

    void RefreshAlbum(const Group& group) {
        Album album{.artist = group.artist, .title = group.title, .trackCount = 0, .cdjid = {}};
        FileList files = ProcessFlatTracks(group.files);
        steps_.Concerning(group.artist + '\\' + group.title);
        if (!steps_.Try(Step::GroupFiles,
                        [&] { album.trackCount = FileCount(group.files.size()); })) {
            for (const ListedFile& file : files)
                walk_.unlisted.push_back({file.Name, album.artist, album.title});
            return;
        }
        ProcessAlbum(walk_, std::move(album), std::move(files));
    }

    Walk& walk_;
    Run& run_;
    Steps steps_;
    LeftOutMusic leftOut_;
    std::vector<Group> groups_;                            ///< in the order of their files
    std::unordered_map<std::string, std::size_t> places_;  ///< AlbumKey to position in groups_
};

}  // namespace

void WalkFlat(Walk& walk) {
    FlatWalk(walk).Refresh();
}

}  // namespace quillon
