#include "id3/album_tags.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "id3/difference_fields.h"
#include "id3/renames.h"
#include "id3/song_title.h"
#include "id3/tag_comparison.h"
#include "id3/tag_reader.h"
#include "id3/track_info.h"
#include "id3/update_for_id3_info.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "run/name_cleaning.h"
#include "run/sound_files.h"

namespace quillon {
namespace {

constexpr int ListStep = 3, BracketStep = 4, CompareStep = 5, RowStep = 6, TitleStep = 7;

/// Whether no name can hold the character, although clean names may.
bool IsRefused(char character) {
    return character == '"' || (character >= 0 && character < ' ');
}

/// A tag's title as part of a file's name. Failure: BadFileName when no name can hold it or nothing
/// is left of it.
std::string FileTitle(const std::string& tagTitle) {
    std::string title = NoNasties(tagTitle);
    if (Trim(title).empty() || std::any_of(title.begin(), title.end(), IsRefused))
        throw Failure(FailureNumber::BadFileName, "title " + tagTitle);
    return title;
}

class AlbumTags {
  public:
    AlbumTags(TagWalk& walk, const std::string& artist, const FolderEntry& folder)
        : walk_(walk), artist_(artist), folder_(folder) {}

    void Verify() {
        Renames renames(walk_.run, walk_.tracks, walk_.steps);
        std::vector<Found> files;
        for (const std::string& name : NamesWithoutBrackets()) {
            walk_.steps.Concerning(PathOf(name));
            walk_.steps.Try(CompareStep, [&] {
                if (std::optional<Found> file = Compare(name, renames))
                    files.push_back(std::move(*file));
            });
        }
        const std::vector<bool> renamed = renames.Commit();
        for (Found& file : files) {
            if (file.rename && renamed[*file.rename]) {
                file.compared.path = PathOf(NameOf(*file.compared.newTitle));
            } else {
                file.compared.newTitle.reset();
            }
            UpdateForID3Info(walk_.run, walk_.tracks, file.compared);
        }
    }

  private:
    /// A file that is there with a tag that was compared.
    struct Found {
        ComparedFile compared;
        std::optional<std::size_t> rename = {};  ///< its number, if it is to be renamed
    };

    std::string PathOf(std::string_view name) const {
        return std::string(folder_.path).append("\\").append(name);
    }
    std::string NameOf(std::string_view title) const {
        return std::string(artist_).append(" - ").append(title).append(".mp3");
    }
    std::vector<std::string> SoundFiles() {
        std::vector<std::string> names;
        walk_.steps.Concerning(folder_.path);
        walk_.steps.Try(ListStep, [&] {
            for (FileEntry& file : walk_.run.files.FilesIn(folder_.path)) {
                if (IsSoundFile(file.name)) names.push_back(std::move(file.name));
            }
        });
        return names;
    }

    /// The names of the sound files after those with square brackets have new ones.
    std::vector<std::string> NamesWithoutBrackets() {
        std::vector<std::string> names;
        std::vector<std::pair<std::size_t, std::string>> rounded;  // place in names, new name
        Renames renames(walk_.run, walk_.tracks, walk_.steps);
        for (std::string& name : SoundFiles()) {
            std::string round = RoundBrackets(name);
            if (round != name) {
                const std::string path = PathOf(name), target = PathOf(round);
                if (!renames.Exists(target)) {
                    renames.Add(path, target, Renames::RowTitle::RoundBrackets);
                    rounded.emplace_back(names.size(), std::move(round));
                } else if (renames.DeleteDuplicate(BracketStep, path, target)) {
                    continue;
                }
            }
            names.push_back(std::move(name));
        }
        const std::vector<bool> renamed = renames.Commit();
        for (std::size_t i = 0; i < rounded.size(); ++i) {
            if (renamed[i]) names[rounded[i].first] = std::move(rounded[i].second);
        }
        return names;
    }

    ExpectedTag Expected(const std::string& song, const std::string& track) const {
        ExpectedTag expected;
        expected[TagMarker] = "TAG";
        expected[TagSong] = song;
        expected[TagArtist] = artist_;
        expected[TagAlbum] = folder_.name;
        expected[TagTrack] = track;
        const auto& genres = walk_.run.GenreDictionary;
        const auto genre = genres.find(artist_ + folder_.name + song);
        if (genre != genres.end()) expected[TagGenre] = genre->second;
        return expected;
    }

    /// Nothing when there is no tag to compare, or no file any more. Throws Failure.
    std::optional<Found> Compare(const std::string& name, Renames& renames) {
        const std::string path = PathOf(name);
        const std::vector<std::string> pieces = Split(ReadID3(walk_.run, path), "|");
        // Of a tag that could not be read as a whole nobody knows which field a piece is. The
        // reader has told of it.
        if (pieces.size() < RecordPieces) return std::nullopt;

        Found file;
        const std::string song = SongTitle(name, artist_);
        const std::string info = GetID3TrackInfo(walk_.run, artist_, folder_.name, song);
        const std::size_t bar = info.find('|');
        TagComparison tag =
            CompareTag(pieces, Expected(song, info.substr(bar + 1)), info.substr(0, bar));
        AddDifferences(song, tag.differences);
        if (tag.titleDiffers && !TakeTagTitle(name, pieces[TagSong], renames, file))
            return std::nullopt;
        file.compared.path = path;
        file.compared.artist = artist_;
        file.compared.album = folder_.name;
        file.compared.song = song;
        file.compared.track = std::move(tag.track);
        file.compared.seconds = std::move(tag.seconds);
        return file;
    }

    void AddDifferences(const std::string& song, const std::vector<TagDifference>& differences) {
        for (const TagDifference& difference : differences) {
            walk_.steps.Try(
                RowStep, [&] { walk_.differences.Add(artist_, folder_.name, song, difference); });
        }
    }

    /// The tag is trusted over the file's name. False when the file was deleted as a duplicate; its
    /// row must then not be marked as found.
    bool TakeTagTitle(const std::string& name, const std::string& tagTitle, Renames& renames,
                      Found& file) {
        bool stays = true;
        walk_.steps.Try(TitleStep, [&] {
            std::string title = FileTitle(tagTitle);
            const std::string newName = NameOf(title);
            // What differs are characters that no name can hold: it cannot come nearer to the tag,
            // and is no duplicate of itself.
            if (EqualIgnoringCase(newName, name)) return;
            const std::string path = PathOf(name), target = PathOf(newName);
            if (renames.Exists(target)) {
                stays = !renames.DeleteDuplicate(TitleStep, path, target);
            } else {
                file.rename = renames.Add(path, target, Renames::RowTitle::Keep);
                file.compared.newTitle = std::move(title);
            }
        });
        return stays;
    }

    TagWalk& walk_;
    const std::string& artist_;
    const FolderEntry& folder_;
};

}  // namespace

void VerifyAlbumTags(TagWalk& walk, const std::string& artist, const FolderEntry& folder) {
    AlbumTags(walk, artist, folder).Verify();
}

}  // namespace quillon
