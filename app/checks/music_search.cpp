#include "app/checks/music_search.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "platform/failure.h"
#include "run/disc_folders.h"
#include "run/paths.h"
#include "run/sound_files.h"

namespace quillon {
namespace {

/// A wrong root may be a whole disk, which would take too long.
constexpr std::size_t MostFolders = 20'000;
/// How far below the songs' place others are looked for.
constexpr std::size_t FurtherDown = 4;

class Search {
  public:
    Search(Files& files, std::size_t depth, bool joinsDiscs)
        : files_(files), depth_(depth), joinsDiscs_(joinsDiscs) {}

    /// Whether a song was found where it should be.
    bool Look(const std::string& folder, std::size_t depth) try {
        if (IsOfFileSystem(LastName(folder))) return false;
        if (++looked_ > MostFolders) {
            isWhole_ = false;
            return false;
        }
        if (HasSong(folder, depth) && IsPlaceOfSongs(folder, depth)) return true;
        // Once it is known that there is music further down, only its place is of interest.
        if (depth >= depth_ + (deeper_.empty() ? FurtherDown : 0)) return false;
        const Listing<FolderEntry> folders = files_.SubFolders(folder);
        isWhole_ = isWhole_ && folders.unseen.empty();
        return std::ranges::any_of(
            folders, [&](const FolderEntry& entry) { return Look(entry.path, depth + 1); });
    } catch (const Failure&) {
        isWhole_ = false;
        return false;
    }

    FoundMusic Result() const {
        if (!deeper_.empty()) return {MusicPlace::Deeper, deeper_};
        if (!higher_.empty()) return {MusicPlace::Higher, higher_};
        return {isWhole_ ? MusicPlace::None : MusicPlace::Unknown, ""};
    }

  private:
    bool IsPlaceOfSongs(const std::string& folder, std::size_t depth) const {
        if (depth == depth_) return true;
        return joinsDiscs_ && depth == depth_ + 1 && DiscOfFolder(LastName(folder)).has_value();
    }

    bool HasSong(const std::string& folder, std::size_t depth) {
        const Listing<FileEntry> files = files_.FilesIn(folder);
        isWhole_ = isWhole_ && files.unseen.empty();
        const auto song = std::ranges::find_if(
            files, [](const FileEntry& file) { return IsSoundFile(file.name); });
        if (song == files.end()) return false;
        if (depth > depth_) deeper_ = song->path;
        if (depth < depth_) higher_ = song->path;
        return true;
    }

    Files& files_;
    std::size_t depth_;
    bool joinsDiscs_;
    std::size_t looked_ = 0;
    bool isWhole_ = true;  ///< nothing was left out of sight
    std::string deeper_, higher_;
};

}  // namespace

FoundMusic LookForMusic(Files& files, const std::string& libraryFolder, std::size_t depth,
                        bool joinsDiscs) {
    Search search(files, depth, joinsDiscs);
    if (search.Look(libraryFolder, 0)) return {MusicPlace::AsExpected, ""};
    return search.Result();
}

}  // namespace quillon
