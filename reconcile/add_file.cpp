#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "database/spinner_rows.h"
#include "database/sql.h"
#include "id3/same_sound.h"
#include "id3/tag_agreement.h"
#include "platform/basic_text.h"
#include "platform/clock.h"
#include "platform/failure.h"
#include "reconcile/added_file.h"
#include "reconcile/adding.h"
#include "reconcile/new_rows.h"
#include "reconcile/take_back.h"
#include "run/host_settings.h"
#include "run/paths.h"
#include "run/run.h"
#include "run/steps.h"
#include "tags/tag_reader.h"

namespace quillon {
namespace {

/// `genres` are those that have been looked up.
std::string GenreOfNumber(Connection& connection, Adding::Genres& genres, std::string_view number) {
    // The number stands bare in the statement: a text (of a tag with a "|" in its title) would be
    // read as SQL.
    if (!IsNumeric(number)) {
        throw Failure::Described(
            FailureNumber::Database,
            "Syntax error (missing operator) in query expression: GenreID=" + std::string(number));
    }
    const auto genre = ToLong(number);
    const auto [known, isNew] = genres.try_emplace(genre);
    if (!isNew) return known->second;
    const std::unique_ptr<RecordSet> found =
        connection.Query("SELECT Genre FROM SpinnerGenre WHERE GenreID=" + std::to_string(genre));
    if (!found->IsEmpty()) known->second = found->Text("Genre");
    return known->second;
}

/// The identifier of the album, "" when there is none. A disc of another player will do; where the
/// library has an album of that name, too, that one is meant.
std::string FindAlbum(Connection& connection, const std::string& artist, const std::string& title) {
    const std::string statement =
        "SELECT CDJID, Tracks FROM Albums WHERE Artist=" + Quoted(artist) +
        " AND Title=" + Quoted(title);
    const std::unique_ptr<RecordSet> albums = connection.Query(statement);
    if (albums->IsEmpty()) return "";
    std::string first = albums->Text("CDJID");
    albums->MoveNext();
    if (albums->IsEof()) return first;
    const std::unique_ptr<RecordSet> owned = connection.Query(statement + " AND Player=1001");
    return owned->IsEmpty() ? first : owned->Text("CDJID");
}

/// One file on its way into the library.
///
/// The copy comes before the rows, and of the rows the artist's before the album's: a run that is
/// killed in between leaves what the next one completes. A row first would make that one believe
/// that the file is there, for good.
class Addition {
  public:
    Addition(Adding& adding, const FileEntry& source, std::string_view cover)
        : adding_(adding),
          run_(adding.run),
          albums_(*adding.albums),
          steps_(adding.run, "AddFile"),
          source_(source),
          path_(source.path),
          cover_(cover) {}

    /// As AddFile() tells it.
    bool Add(std::string_view artist, std::string_view album) {
        steps_.Concerning(path_);
        const bool done = steps_.Try(Step::Describe, [&] { Describe(artist, album); }) &&
                          steps_.Try(Step::LookUp, [&] { LookUp(); }) &&
                          steps_.Try(Step::Copy, [&] { Copy(); }) &&
                          steps_.Try(Step::FindOrAddAlbum, [&] { FindOrAddAlbum(); }) &&
                          TryCover() && steps_.Try(Step::AddRows, [&] { AddRows(); });
        if (done) {
            Settle();
        } else {
            Undo();
        }
        return done && isNamedByTag_;
    }

  private:
    enum class Step {
        Describe = 1,
        LookUp = 2,
        Copy = 3,
        FindOrAddAlbum = 4,
        GiveCover = 5,
        AddRows = 6,
        Undo = 7,
    };

    void Describe(std::string_view artist, std::string_view album);
    void LookUp();
    bool HasTrack(const std::string& soundFile) const;
    bool IsAddedAsCut() const;
    bool IsAddedWithoutDisc() const;
    bool IsAddedToItsArtist() const;
    bool IsThere(const std::string& target) const;
    void FileUnderAlbumArtist();
    void KeepApart();
    void Copy();
    void FindOrAddAlbum();
    bool TryCover();
    void GiveCover(TakeBack& coverBack);
    void AddRows();
    void Settle();
    void Undo();

    void MakeFolder(const std::string& folder);
    void AddArtist();
    void StandOnAlbum();
    std::string CoverTarget() const;
    void AddRow(std::string_view table, const std::vector<FieldValue>& fields);

    Adding& adding_;
    Run& run_;
    RecordSet& albums_;
    Steps steps_;
    TakeBack takeBack_;
    const FileEntry& source_;
    const std::string& path_;
    std::string cover_;
    AddedFile file_;
    std::string ownArtist_;  ///< of a track in an album of several; else ""
    std::string artistFolder_, albumFolder_;
    std::string folder_;  ///< the disc's, else the album's
    std::string target_;
    std::string cdjid_;          ///< "" while there is no album
    bool isNamedByTag_ = false;  ///< artist and album are those of the file's tag
    bool isNewAlbum_ = false;
    bool isKnown_ = false;  ///< a track has the target already
    bool isNewArtist_ = false, isCoverGiven_ = false;
    bool isCopied_ = false;
};

/// Nothing has been written when this fails.
void Addition::Describe(std::string_view artist, std::string_view album) {
    file_.title = TitleInPath(path_);
    const std::optional<Tag> tag = ReadID3Once(run_, source_, GenreAs::Number);
    if (!tag) {
        throw Failure::Described(
            FailureNumber::PathFileAccess,
            "Not added, since nobody knows without its tag where it belongs: " + path_, path_);
    }
    ReadTagInto(file_, *tag, [this, &tag](std::string_view genre) {
        const bool isName = !tag->isRecorded && !IsNumeric(genre);
        return isName ? std::string(genre) : GenreOfNumber(*run_.connection, adding_.genres, genre);
    });
    isNamedByTag_ = !file_.artist.empty() && !file_.album.empty();
    if (file_.artist.empty()) file_.artist = artist;
    if (file_.album.empty()) file_.album = album;
    // A title taken from a folder's name cannot be the file's.
    if (file_.title.find('\\') != std::string::npos && file_.title == TitleInPath(path_))
        file_.title = TitleInName(path_);
    FileUnderAlbumArtist();
    RequireFileNames(file_, path_);
    if (run_.modern.joinsDiscs) file_.disc = DiscFolderOf(path_, *tag);
    artistFolder_ = adding_.root + file_.artist;
    albumFolder_ = artistFolder_ + '\\' + file_.album;
    folder_ = file_.disc.empty() ? albumFolder_ : albumFolder_ + '\\' + file_.disc;
    target_ = folder_ + '\\' + file_.title + ".mp3";
    if (run_.modern.joinsDiscs || !ownArtist_.empty()) KeepApart();
}

/// Else an album of several artists would come apart into as many as there are artists. One artist
/// throughout stays the album's, whoever it is filed under: a folder of another name would have the
/// tags corrected.
void Addition::FileUnderAlbumArtist() {
    const std::string albumArtist = adding_.compilations.AlbumArtistOf(path_);
    if (albumArtist.empty() || EqualIgnoringCase(albumArtist, file_.artist)) return;
    const bool isMeant = adding_.compilations.IsOfSeveral(albumArtist, file_.album) ||
                         !FindAlbum(*run_.connection, albumArtist, file_.album).empty();
    if (isMeant) ownArtist_ = std::exchange(file_.artist, albumArtist);
}

/// Another song that has the title of one of this run gets a number behind it.
void Addition::KeepApart() {
    const std::string title = file_.title;
    for (int number = 2;; ++number) {
        const auto [source, isNew] = adding_.sources.try_emplace(LowerCase(target_), path_);
        if (isNew || source->second == path_) return;
        if (HaveSameSound(run_.files, path_, source->second)) return;
        file_.title = title + " (" + std::to_string(number) + ')';
        target_ = folder_ + '\\' + file_.title + ".mp3";
    }
}

void Addition::LookUp() {
    const bool isElsewhere = !ownArtist_.empty() && !HasTrack(target_) && IsAddedToItsArtist();
    if (isElsewhere) file_.artist = ownArtist_;
    if (file_.artist == adding_.artist && file_.album == adding_.album) cdjid_ = adding_.cdjid;
    if (cdjid_.empty()) cdjid_ = FindAlbum(*run_.connection, file_.artist, file_.album);
    isKnown_ = isElsewhere || HasTrack(target_) || IsAddedAsCut() || IsAddedWithoutDisc();
}

bool Addition::HasTrack(const std::string& soundFile) const {
    return !run_.connection->Query("SELECT ID FROM Tracks WHERE SoundFile =" + Quoted(soundFile))
                ->IsEmpty();
}

/// Whether the very music has been added by what version 1 had left of its names.
bool Addition::IsAddedAsCut() const {
    if (!run_.modern.readsAllTags) return false;
    const std::vector<std::string> artists = CutTexts(file_.artist), albums = CutTexts(file_.album),
                                   titles = CutTexts(file_.title);
    const std::size_t count = std::max({artists.size(), albums.size(), titles.size()});
    for (std::size_t i = 0; i < count; ++i) {
        const auto cut = [i](const std::vector<std::string>& cuts, const std::string& whole) {
            return cuts.empty() ? whole : cuts[std::min(i, cuts.size() - 1)];
        };
        const std::string target = adding_.root + cut(artists, file_.artist) + '\\' +
                                   cut(albums, file_.album) + '\\' + cut(titles, file_.title) +
                                   ".mp3";
        if (target != target_ && IsThere(target)) return true;
    }
    return false;
}

/// Whether it has been added to the album's own folder, where no disc was asked for.
bool Addition::IsAddedWithoutDisc() const {
    const std::string target = albumFolder_ + '\\' + file_.title + ".mp3";
    return !file_.disc.empty() && IsThere(target);
}

/// Whether it has been added when albums of several artists were not kept together.
bool Addition::IsAddedToItsArtist() const {
    return IsThere(adding_.root + ownArtist_ + target_.substr(artistFolder_.size()));
}

/// Whether a track has this very music at the path.
bool Addition::IsThere(const std::string& target) const {
    return HasTrack(target) && run_.files.FileExists(target) &&
           HaveSameSound(run_.files, path_, target);
}

void Addition::Copy() {
    if (isKnown_) return;
    if (folder_ != adding_.folder) {
        MakeFolder(artistFolder_);
        MakeFolder(albumFolder_);
        MakeFolder(folder_);
    }
    if (run_.files.FileExists(target_)) return;
    run_.files.CopyFile(path_, target_, false);
    isCopied_ = true;
    takeBack_.Add([this] { run_.files.Discard(target_); });
}

void Addition::MakeFolder(const std::string& folder) {
    if (run_.files.FolderExists(folder)) return;
    run_.files.CreateFolder(folder);
    takeBack_.Add([this, folder] { run_.files.Discard(folder); });
}

void Addition::FindOrAddAlbum() {
    if (!cdjid_.empty()) return;
    AddArtist();
    const std::string next = adding_.sequence.GetNextCDJID(file_.artist + '\\' + file_.album);
    if (next.empty()) {
        throw Failure::Described(FailureNumber::Database, "No identifier for album " + file_.album);
    }
    AddRow("Albums", FieldsOf(run_.clock.Now(), NewAlbum{.cdjid = next,
                                                         .artist = file_.artist,
                                                         .title = file_.album,
                                                         .trackCount = 0}));
    cdjid_ = next;
    isNewAlbum_ = true;
}

void Addition::AddArtist() {
    const bool known =
        !run_.connection->Query("SELECT ID FROM SpinnerArtist WHERE Artist=" + Quoted(file_.artist))
             ->IsEmpty();
    if (known) return;
    AddRow("SpinnerArtist", FieldsOfSpinnerArtist(file_.artist));
    isNewArtist_ = true;
}

/// Music matters more than its picture: if need be it is added without one. Always true.
bool Addition::TryCover() {
    const bool isWanted = !cover_.empty() && NamesFolder(run_.settings.AlbumCoverFolder) &&
                          !adding_.refusedCovers.contains(CoverTarget());
    if (!isWanted) return true;
    TakeBack coverBack;
    if (steps_.Try(Step::GiveCover, [&] { GiveCover(coverBack); })) {
        takeBack_.Append(coverBack);
    } else {
        // One line of the log for each album is enough.
        adding_.refusedCovers.insert(CoverTarget());
        steps_.Try(Step::Undo, [this] { albums_.CancelUpdate(); });
        coverBack.Run(steps_, Step::Undo);
        isCoverGiven_ = false;
    }
    return true;
}

/// An image that has the cover's name already was put there for this very album: it is taken as it
/// is, and never overwritten.
void Addition::GiveCover(TakeBack& coverBack) {
    if (cdjid_ == adding_.coveredAlbum) return;
    StandOnAlbum();
    if (!IsNull(albums_.Get("ImageFile"))) {
        adding_.coveredAlbum = cdjid_;
        return;
    }
    const std::string image = CoverTarget();
    if (!run_.files.FileExists(image)) {
        run_.files.CopyFile(cover_, image, false);
        coverBack.Add([this, image] { run_.files.Discard(image); });
    }
    StandOnAlbum();
    albums_.Set("ImageFile", image);
    albums_.Update();
    isCoverGiven_ = true;
    coverBack.Add([this] {
        StandOnAlbum();
        albums_.Set("ImageFile", Null{});
        albums_.Update();
    });
}

std::string Addition::CoverTarget() const {
    return run_.settings.AlbumCoverFolder + file_.artist + " - " + file_.album +
           cover_.substr(cover_.rfind('.'));
}

void Addition::StandOnAlbum() {
    albums_.Filter("CDJID=" + FilterQuoted(cdjid_));
    if (!albums_.IsEmpty()) return;
    throw Failure::Described(FailureNumber::Database, "Album record missing for CDJID " + cdjid_);
}

void Addition::AddRows() {
    if (isKnown_) return;
    StandOnAlbum();
    const Value count = albums_.Get("Tracks");
    albums_.Set("Tracks", albums_.Integer("Tracks") + 1);
    albums_.Update();
    takeBack_.Add([this, count] {
        StandOnAlbum();
        albums_.Set("Tracks", count);
        albums_.Update();
    });
    // A reconciliation puts the artist's folder into the track's artist.
    AddRow("Tracks", FieldsOf(run_.clock.Now(), NewTrack{.cdjid = cdjid_,
                                                         .number = file_.track,
                                                         .title = file_.title,
                                                         .artist = std::nullopt,
                                                         .soundFile = target_,
                                                         .album = file_.album}));
    AddRow("Spinner", FieldsOf(run_.clock.Now(),
                               DownloadSong{.link = StreamLink(adding_.downloadHost, file_.genre),
                                            .artist = file_.artist,
                                            .album = file_.album,
                                            .song = file_.title,
                                            .length = 0,
                                            .genre = file_.genre}));
}

/// Adds a row by its key, and notes how to undo that.
void Addition::AddRow(std::string_view table, const std::vector<FieldValue>& fields) {
    const AddedRow added = run_.connection->Insert(table, fields);
    takeBack_.Add([this, table, added] { run_.connection->Delete(table, added.key); });
}

void Addition::Settle() {
    adding_.artist = file_.artist;
    adding_.album = file_.album;
    adding_.cdjid = cdjid_;
    if (isCopied_) adding_.folder = folder_;
    if (isNewAlbum_) {
        adding_.sequence.Taken(cdjid_);
        ++run_.counts.albumsAdded;
    }
    if (!isKnown_) ++run_.counts.tracksAdded;
    if (!isKnown_) ++run_.counts.songsAdded;
    if (isNewArtist_) ++run_.counts.artistsAdded;
    if (isCoverGiven_) ++run_.counts.imagesAdded;
    if (isCopied_) ++run_.counts.filesCopied;
}

void Addition::Undo() {
    // Else the next row's values would join what is left of this one's.
    steps_.Try(Step::Undo, [this] { albums_.CancelUpdate(); });
    takeBack_.Run(steps_, Step::Undo);
    adding_.cdjid.clear();
    adding_.folder.clear();
}

}  // namespace

bool AddFile(Adding& adding, std::string_view artist, std::string_view album, const FileEntry& file,
             std::string_view cover) {
    return Addition(adding, file, cover).Add(artist, album);
}

}  // namespace quillon
