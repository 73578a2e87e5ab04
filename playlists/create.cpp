#include "playlists/create.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/basic_text.h"
#include "platform/failure.h"
#include "playlists/artist_entries.h"
#include "playlists/generated_lists.h"
#include "playlists/generated_rows.h"
#include "playlists/obsolete_lists.h"
#include "playlists/pla_line.h"
#include "playlists/playlist_folder.h"
#include "playlists/playlist_text.h"
#include "run/counted.h"
#include "run/file_bytes.h"
#include "run/log.h"
#include "run/name_cleaning.h"
#include "run/playlist_entries.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

/// Which artists have tracks enough.
class Threshold {
  public:
    explicit Threshold(Run& run) : least_(run.settings.ArtistThreshold) {
        const TrackRow* last = nullptr;
        std::int64_t* count = nullptr;
        for (const TrackRow& track : run.TheLibrary().Tracks()) {
            if (track.isGone || track.isWaiting) continue;
            // Tracks of one artist mostly follow each other.
            if (last == nullptr || !last->artist.IsSameAs(track.artist))
                count = &counts_[LowerCase(track.artist)];
            last = &track;
            ++*count;
            if (run.modern.keepsTrackArtists) CountForAlbum(run.TheLibrary(), track);
        }
    }

    /// An artist without tracks gets no list, however low the threshold.
    bool IsReachedBy(std::string_view artist) const {
        const auto found = counts_.find(LowerCase(artist));
        return found != counts_.end() && found->second >= least_;
    }

  private:
    /// The artist of an album has its tracks, too, whoever they are by.
    void CountForAlbum(Library& library, const TrackRow& track) {
        const AlbumRow* const album = library.AlbumOf(track);
        if (album != nullptr && !EqualIgnoringCase(album->artist, track.artist))
            ++counts_[LowerCase(album->artist)];
    }

    std::int64_t least_;
    std::unordered_map<std::string, std::int64_t> counts_;  ///< by artist in lower case
};

/// The albums that have an artist and an identifier, by artist as the database sorts; those of one
/// artist in the file's order.
std::vector<const AlbumRow*> AlbumsByArtist(Library& library) {
    std::vector<const AlbumRow*> albums;
    for (const AlbumRow& album : library.Albums()) {
        if (!album.isGone && !album.isWaiting && !album.artist.IsEmpty() && !album.cdjid.IsEmpty())
            albums.push_back(&album);
    }
    std::ranges::sort(albums, {}, &AlbumRow::key);
    std::ranges::stable_sort(albums, [&](const AlbumRow* one, const AlbumRow* other) {
        return library.Rules().ComesBefore(one->artist, other->artist);
    });
    return albums;
}

void PlanGenres(const Run& run, GeneratedLists& lists) {
    std::string_view genre;
    for (const PlaylistEntries::Position at : run.playlistEntries.ByGenre()) {
        const PlaylistEntry entry = run.playlistEntries.At(at);
        if (entry.Genre != genre) {
            genre = entry.Genre;
            lists.Begin(genre);
        }
        lists.AddTrack(entry.CDJID, entry.Track);
    }
}

void PlanArtistsByTrack(Run& run, GeneratedLists& lists) {
    const Threshold threshold(run);
    std::string_view artist;
    bool isWanted = false;
    for (const PlaylistEntries::Position at : run.playlistEntries.ByArtist()) {
        const PlaylistEntry entry = run.playlistEntries.At(at);
        if (entry.Artist != artist) {
            artist = entry.Artist;
            isWanted = threshold.IsReachedBy(artist);
            if (isWanted) lists.Begin(artist);
        }
        if (isWanted) lists.AddTrack(entry.CDJID, entry.Track);
    }
}

/// Whether there are any albums to make lists of.
bool PlanArtistsByAlbum(Run& run, GeneratedLists& lists) {
    const Threshold threshold(run);
    std::string artist;
    bool isWanted = false;
    for (const AlbumRow* const album : AlbumsByArtist(run.TheLibrary())) {
        if (!EqualIgnoringCase(album->artist, artist)) {
            artist = album->artist;
            isWanted = threshold.IsReachedBy(artist);
            if (isWanted) lists.Begin(artist);
        }
        if (isWanted) lists.AddAlbum(album->cdjid);
    }
    return !artist.empty();
}

/// More failures in a row come from a full disk, or a folder where nothing may be written.
constexpr std::size_t MostFailures = 10;

/// The files of one family's lists. Those that are not as they are to be are written in groups.
class ListFiles {
  public:
    ListFiles(Run& run, Steps& steps, MadeLists& made)
        : run_(run),
          steps_(steps),
          made_(made),
          batch_(run.files.CreateTexts([this](const Failure* failure) { Done(failure); })) {}

    /// Brings a file to these bytes. Failure: it cannot be read or written.
    void Bring(const std::string& path, const std::string& bytes, const GeneratedList& list) {
        if (HoldsJust(run_.files, path, bytes)) {
            failures_ = 0;
            return;
        }
        waiting_.push_back({&list, path});
        batch_->Write(path, bytes);
    }

    void Failed(const GeneratedList& list) {
        // Of what could not even be written nobody will be told.
        if (!waiting_.empty() && waiting_.back().list == &list) waiting_.pop_back();
        made_.Failed(list);
        ++failures_;
    }

    /// Failure: too many have failed, one after the other.
    void RequireSuccess() const {
        if (failures_ < MostFailures) return;
        steps_.Concerning({});
        throw Failure::Described(
            FailureNumber::PathFileAccess,
            std::to_string(failures_) +
                " lists in a row could not be made, so the others are not tried");
    }

    void Close() { batch_->Close(); }

  private:
    struct Waiting {
        const GeneratedList* list;
        std::string path;
    };

    void Done(const Failure* failure) {
        const Waiting done = std::move(waiting_.front());
        waiting_.pop_front();
        if (failure == nullptr) {
            ++run_.counts.playlistsWritten;
            failures_ = 0;
            return;
        }
        steps_.Concerning(done.path);
        steps_.Try([&] { throw Failure(*failure); });
        Failed(*done.list);
    }

    Run& run_;
    Steps& steps_;
    MadeLists& made_;
    std::deque<Waiting> waiting_;  ///< written and without its name as yet
    std::size_t failures_ = 0;     ///< in a row
    std::unique_ptr<TextBatch> batch_;
};

class Creation {
  public:
    Creation(Run& run, Steps& steps) : run_(run), steps_(steps) {}

    void Perform() {
        run_.ShowItem("1. Read Playlist Track / Album Info");
        bool isAllRead = false;
        SharesBySize shares(run_, 4);
        if (!run_.AbortRequested) {
            const Share share = shares.Next(1);
            isAllRead = ReadArtistEntries(run_, steps_, ArtistEntries::Tracks);
        }
        const bool makesGenres = run_.settings.GenrePlaylist && !run_.AbortRequested;
        if (makesGenres) PlanGenreLists();
        // An abort does not keep this part from its work: it was asked for before that.
        const bool makesArtists = run_.settings.ArtistPlaylist;
        if (makesArtists) PlanArtistLists();
        // Lists in a folder that only stands for a drive would hide what is missing.
        if (run_.removals.Braked() && !HoldsLists()) return;
        RequireFolder();
        if (!last_.empty()) RequireSavedLibrary();
        if (makesGenres) {
            const Share share = shares.Next(1);
            MakeAll("2. New Genre Playlists", genres_);
        }
        if (makesArtists) {
            const Share share = shares.Next(2);
            MakeAll("3. New Artists Playlists", artists_);
        }
        if (isAllRead && !run_.AbortRequested) DeleteObsoleteLists(run_, steps_, made_);
    }

  private:
    void PlanGenreLists() {
        PlanGenres(run_, genres_);
        Planned(genres_, run_.playlistEntries.Count() > 0);
    }

    void PlanArtistLists() {
        bool isAny = run_.playlistEntries.Count() > 0;
        if (run_.settings.PlaylistByAlbumOption) {
            isAny = PlanArtistsByAlbum(run_, artists_);
        } else {
            PlanArtistsByTrack(run_, artists_);
        }
        Planned(artists_, isAny);
    }

    void Planned(const GeneratedLists& lists, bool isAnyMusic) {
        made_.Plan(lists);
        if (!isAnyMusic) made_.FoundNoMusic(lists.Family());
        // Two genres, or a genre and an artist, may lead to the same file; the last one has it.
        for (const GeneratedList& list : lists.All())
            last_[LowerCase(list.name)] = &list;
    }

    bool HoldsLists() const {
        return PlaylistFolderExists(run_) && !FilesInPlaylistFolder(run_).empty();
    }

    /// A list of albums and numbers that the database does not get would name other songs later.
    void RequireSavedLibrary() {
        run_.TheLibrary().Save();
        run_.Flush();
    }

    void RequireFolder() const {
        if (last_.empty() || PlaylistFolderExists(run_)) return;
        throw Failure(FailureNumber::PathNotFound, run_.settings.PlayListPath);
    }

    void MakeAll(std::string_view item, const GeneratedLists& lists) {
        run_.ShowItem(item);
        TellNameless(lists);
        ListFiles files(run_, steps_, made_);
        for (const GeneratedList& list : Counted(run_, lists.All())) {
            if (lists.Family() == GeneratedBy::Artist && list.name == list.stem)
                run_.ShowItem("3. Create Artist Playlist - " + list.of);
            const std::string path =
                run_.settings.PlayListPath + list.name + std::string(PlaExtension);
            steps_.Concerning(path);
            if (!steps_.Try([&] { Make(lists, list, path, files); })) files.Failed(list);
            files.RequireSuccess();
        }
        files.Close();
        steps_.Concerning({});
        made_.Complete(lists.Family());
    }

    void TellNameless(const GeneratedLists& lists) {
        for (const std::string& name : lists.Nameless()) {
            const bool isNothingLeft = NoPlaylistNasties(name).empty();
            WriteLog(run_, LogSource,
                     "No playlist for " + name +
                         (isNothingLeft ? ": a file's name can hold no character of it"
                                        : ": no file can have that name"));
        }
    }

    void Make(const GeneratedLists& lists, const GeneratedList& list, const std::string& path,
              ListFiles& files) {
        RecordPlaylist(run_, list.name, lists.Family());
        if (last_.at(LowerCase(list.name)) != &list) {
            WriteLog(run_, LogSource,
                     "No playlist " + path + " for " + list.of +
                         ": another list of this run has the same name");
            return;
        }
        files.Bring(path, lists.Text(list), list);
    }

    Run& run_;
    Steps& steps_;
    GeneratedLists genres_{GeneratedBy::Genre, run_.settings.MaxPlaylistLength};
    GeneratedLists artists_{GeneratedBy::Artist, run_.settings.MaxPlaylistLength};
    std::unordered_map<std::string, const GeneratedList*> last_;  ///< by name in lower case
    MadeLists made_;
};

}  // namespace

void CreateNewPlaylists(Run& run) {
    Steps steps(run, "Generate New Playlists Error:");
    steps.Try([&] { Creation(run, steps).Perform(); });
}

}  // namespace quillon
