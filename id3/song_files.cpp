#include "id3/song_files.h"

#include <utility>

#include "id3/file_names.h"
#include "platform/basic_text.h"
#include "run/disc_folders.h"
#include "run/run.h"
#include "run/sound_files.h"
#include "run/steps.h"

namespace quillon {
namespace {

template <typename Map>
auto Found(const Map& map, const std::string& key) {
    const auto found = map.find(key);
    return found == map.end() ? typename Map::mapped_type() : found->second;
}

}  // namespace

SongFiles::SongFiles(Run& run, Steps& steps) : run_(run), steps_(steps) {
    for (const FolderEntry& root : run.LibraryFolders) {
        steps.Concerning(root.path);
        steps.Try(StoreStep::ListFolder, [&] {
            for (FolderEntry& artist : run.files.SubFolders(root.path))
                artists_[LowerCase(artist.name)].push_back(std::move(artist.path));
        });
    }
}

void SongFiles::GoTo(std::string_view artist, std::string_view album) {
    std::string lowerArtist = LowerCase(artist), lowerAlbum = LowerCase(album);
    const bool sameArtist = lowerArtist == artist_;
    if (sameArtist && lowerAlbum == album_) return;
    artist_ = std::move(lowerArtist);
    album_ = std::move(lowerAlbum);
    if (!sameArtist) ListAlbums();
    ListFiles();
}

void SongFiles::ListAlbums() {
    albums_.clear();
    for (const std::string& folder : Found(artists_, artist_)) {
        steps_.Concerning(folder);
        steps_.Try(StoreStep::ListFolder, [&] {
            for (FolderEntry& album : run_.files.SubFolders(folder))
                albums_[LowerCase(album.name)].push_back(std::move(album.path));
        });
    }
}

void SongFiles::ListFiles() {
    files_.clear();
    for (const std::string& folder : Found(albums_, album_)) {
        std::vector<std::string> folders = ListFilesIn(folder);
        if (!run_.modern.joinsDiscs) continue;
        for (const DiscFolder& disc : TakeDiscFolders(folder, folders))
            ListFilesIn(disc.path);
    }
}

/// Returns the folders in the folder.
std::vector<std::string> SongFiles::ListFilesIn(const std::string& folder) {
    std::vector<std::string> folders;
    steps_.Concerning(folder);
    steps_.Try(StoreStep::ListFolder, [&] {
        Listing<FileEntry> files = run_.files.FilesIn(folder);
        folders = std::move(files.others);
        for (FileEntry& file : files) {
            if (IsSoundFile(file.name)) Add(std::move(file));
        }
    });
    return folders;
}

void SongFiles::Add(FileEntry file) {
    constexpr std::string_view Dash = " - ";
    const std::string key = KeyOf(file.name);
    const std::size_t dash = key.find(Dash);
    if (run_.modern.keepsTrackArtists && dash != std::string::npos) {
        const std::string inner(Trim(std::string_view(key).substr(dash + Dash.size())));
        files_[inner].push_back(file);
    }
    files_[key].push_back(std::move(file));
}

std::vector<FileEntry> SongFiles::WithTitle(std::string_view title) const {
    return Found(files_, KeyOf(title));
}

/// Names and titles alike are taken apart in lower case, so that both give the same key.
std::string SongFiles::KeyOf(std::string_view fileName) const {
    return std::string(Trim(SongTitle(LowerCase(fileName), artist_)));
}

}  // namespace quillon
