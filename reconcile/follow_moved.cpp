#include "reconcile/follow_moved.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>

#include "database/album_key.h"
#include "platform/basic_text.h"
#include "platform/windows_path.h"
#include "reconcile/missing_music.h"
#include "reconcile/move_matching.h"
#include "reconcile/moved_up.h"
#include "reconcile/tracks.h"
#include "run/log.h"
#include "tags/tag_reader.h"

namespace quillon {
namespace {

constexpr std::int64_t UnknownLength = -1;

std::int64_t SecondsOf(const TrackRow& row) {
    const std::int64_t minutes = row.minutes.value_or(-1), seconds = row.seconds.value_or(-1);
    constexpr std::int64_t SecondsAMinute = 60;
    return minutes < 0 || seconds < 0 ? UnknownLength : minutes * SecondsAMinute + seconds;
}

/// A file that a lost track may have.
struct FoundFile {
    std::size_t held = 0, file = 0;
};

/// What tells one song from others.
std::optional<SoundPrint> Telling(const SoundPrint& print) {
    return print.size > 0 ? std::optional(print) : std::nullopt;
}

class Following {
  public:
    Following(Walk& walk, KnownSounds& sounds, std::vector<HeldAlbum>& held,
              const std::vector<LostTrack>& lost)
        : walk_(walk),
          run_(walk.run),
          library_(walk.library),
          sounds_(sounds),
          held_(held),
          lost_(lost),
          steps_(walk.run, "FollowMovedFiles") {}

    bool Perform() {
        Ask();
        MoveAnswer answer = MatchMoves(library_.Rules(), question_);
        becomes_ = std::move(answer.becomes);
        pushedOut_ = SettleOwners(rows_, owners_, becomes_);
        if (!SecurePlaylists() || !PushOut()) return false;
        RenameAlbums();
        for (std::size_t lost = 0; lost < lost_.size(); ++lost) {
            if (becomes_[lost]) MoveTrack(lost);
        }
        TellMoves();
        TellTwins(answer.twins);
        KeepWhereUnheard();
        return true;
    }

  private:
    const ListedFile& FileOf(const FoundFile& found) const {
        return held_[found.held].files[found.file];
    }
    ListedFile& FileOf(const FoundFile& found) { return held_[found.held].files[found.file]; }
    const std::string& PathOf(const FoundFile& found) const { return FileOf(found).Name; }

    void Ask() {
        std::unordered_map<std::string, std::size_t> names;
        for (std::size_t album = 0; album < held_.size(); ++album)
            AskForFiles(album, names);
        std::map<const AlbumRow*, std::size_t> albums;
        for (const LostTrack& lost : lost_) {
            rows_.push_back(lost.row);
            const auto [place, isNew] = albums.try_emplace(lost.album, albums.size());
            if (isNew) AskForAlbum(*lost.album, names);
            const KnownSound* const sound = sounds_.Of(*lost.row);
            question_.lost.push_back(
                {.album = place->second,
                 .title = lost.row->title,
                 .seconds = SecondsOf(*lost.row),
                 .print = sound == nullptr ? std::nullopt : Telling(sound->print),
                 .whole = sound == nullptr ? std::nullopt : sound->whole});
        }
        question_.secondsOf = [this](std::size_t found) { return TagSeconds(found_[found]); };
        question_.wholeOf = [this](std::size_t found) { return Whole(found_[found]); };
    }

    void AskForFiles(std::size_t album, std::unordered_map<std::string, std::size_t>& names) {
        const HeldAlbum& held = held_[album];
        // What no album row can be made for has no tracks, either.
        if ((held.album.artist + held.album.title).find('"') != std::string::npos) return;
        names.try_emplace(AlbumKey(held.album.artist, held.album.title), album);
        for (std::size_t file = 0; file < held.files.size(); ++file) {
            const HeldAlbum::File& kind = held.kinds[file];
            if (!kind.isNew && kind.displaced == nullptr) continue;
            found_.push_back({album, file});
            owners_.push_back(kind.displaced);
            question_.found.push_back(
                {.album = album,
                 .title = GetTrackName(held.files[file].Name, run_.settings.FlatStructure),
                 .print = kind.print ? Telling(*kind.print) : std::nullopt});
        }
    }

    void AskForAlbum(const AlbumRow& album,
                     const std::unordered_map<std::string, std::size_t>& names) {
        const auto same = names.find(AlbumKey(album.artist, album.title));
        question_.lostAlbums.push_back(
            {.tracks = library_.TracksOf(album.cdjid).size(),
             .sameName = same == names.end() ? std::nullopt : std::optional(same->second)});
    }

    std::int64_t TagSeconds(const FoundFile& found) {
        ListedFile& file = FileOf(found);
        if (!file.Tag) {
            file.Tag = ReadTrackTag(run_, file);
            if (!file.Tag) return UnknownLength - 1;
        }
        const std::optional<double> seconds = ToNumber(file.Tag->seconds);
        return seconds ? static_cast<std::int64_t>(*seconds) : UnknownLength;
    }

    std::optional<std::uint64_t> Whole(const FoundFile& found) {
        const ListedFile& file = FileOf(found);
        std::optional<std::uint64_t> whole;
        steps_.Concerning(file.Name);
        steps_.Try(FollowStep::ReadWholeSound, [&] {
            whole = ReadWholeSound(run_.files, file.Name, StateOf(file.Size, file.FileDate));
        });
        return whole;
    }

    /// Before others get their paths, so that no path is ever that of two rows.
    bool PushOut() {
        return std::ranges::all_of(pushedOut_, [this](const PushedOut& pushed) {
            const std::string before = pushed.row->soundFile;
            const FieldValue path{"SoundFile", pushed.path};
            steps_.Concerning(before);
            if (!steps_.Try(FollowStep::MoveTrack,
                            [&] { library_.Change(*pushed.row, std::span(&path, 1)); }))
                return false;
            WriteLog(run_, LogSource,
                     "The song of " + before + " is gone: another one has moved up to its name");
            return true;
        });
    }

    /// What is kept of the playlists knows a song by its path, too.
    bool SecurePlaylists() {
        bool isAny = false;
        for (std::size_t lost = 0; lost < lost_.size(); ++lost) {
            if (!becomes_[lost]) continue;
            isAny = true;
            run_.playlistEntries.SongMoves(static_cast<std::int32_t>(lost_[lost].row->id),
                                           PathOf(found_[*becomes_[lost]]));
        }
        for (const PushedOut& pushed : pushedOut_)
            run_.playlistEntries.SongMoves(static_cast<std::int32_t>(pushed.row->id), pushed.path);
        return !isAny ||
               steps_.Try(FollowStep::SecurePlaylists, [this] { run_.playlistEntries.Keep(); });
    }

    /// Where the tracks of an album have gone.
    struct Exit {
        std::map<std::size_t, std::size_t> tracks;  ///< by the album held back
        std::optional<std::size_t> first;           ///< a track that has got another file
        bool isWhole = false;                       ///< no track has stayed

        std::size_t Most() const {
            const auto fewer = [](const auto& a, const auto& b) { return a.second < b.second; };
            return std::ranges::max_element(tracks, fewer)->first;
        }
    };

    void FindExits() {
        std::unordered_map<const TrackRow*, bool> hasGone;
        for (std::size_t lost = 0; lost < lost_.size(); ++lost) {
            hasGone[lost_[lost].row] = becomes_[lost] || !lost_[lost].isDisplaced;
            if (!becomes_[lost]) continue;
            Exit& exit = exits_[lost_[lost].album];
            if (!exit.first) exit.first = lost;
            ++exit.tracks[found_[*becomes_[lost]].held];
        }
        for (std::size_t held = 0; held < held_.size(); ++held)
            FindRegrouped(held, hasGone);
        for (auto& [album, exit] : exits_) {
            exit.isWhole =
                std::ranges::all_of(library_.TracksOf(album->cdjid), [&](const TrackRow* track) {
                    const auto found = hasGone.find(track);
                    return found != hasGone.end() && found->second;
                });
        }
    }

    /// Files that are where they were and belong to another album now: in the flat layout their
    /// tags say so.
    void FindRegrouped(std::size_t held, std::unordered_map<const TrackRow*, bool>& hasGone) {
        const Album& to = held_[held].album;
        const AlbumRow* const there = library_.FindAlbum(to.artist, to.title);
        for (std::size_t i = 0; i < held_[held].files.size(); ++i) {
            if (held_[held].kinds[i].isNew || held_[held].kinds[i].displaced != nullptr) continue;
            const TrackRow* const row = library_.FindTrack(held_[held].files[i].Name);
            AlbumRow* const from = row == nullptr ? nullptr : library_.AlbumOf(*row);
            if (from == nullptr || from == there) continue;
            ++exits_[from].tracks[held];
            hasGone[row] = true;
        }
    }

    /// An album of which no track has stayed goes where most of them have gone, where no other
    /// album is.
    void RenameAlbums() {
        FindExits();
        std::map<std::size_t, AlbumRow*> newcomers;
        for (const auto& [album, exit] : exits_) {
            if (!exit.isWhole) continue;
            const std::size_t to = exit.Most();
            AlbumRow*& newcomer = newcomers[to];
            const auto comesFirst = [&, album = album, exit = &exit] {
                const std::size_t tracks = exit->tracks.at(to);
                const std::size_t others = exits_.at(newcomer).tracks.at(to);
                return tracks > others || (tracks == others && album->key < newcomer->key);
            };
            if (newcomer == nullptr || comesFirst()) newcomer = album;
        }
        DropWhereOthersStay(newcomers);
        for (const auto& [to, album] : newcomers) {
            const Album& held = held_[to].album;
            steps_.Concerning(held.artist + '\\' + held.title);
            steps_.Try(FollowStep::RenameAlbum,
                       [&, to = to, album = album] { Rename(*album, held_[to].album); });
        }
    }

    void DropWhereOthersStay(std::map<std::size_t, AlbumRow*>& newcomers) {
        const auto leaves = [&](const AlbumRow* row) {
            return std::ranges::any_of(newcomers,
                                       [row](const auto& entry) { return entry.second == row; });
        };
        const auto isTaken = [&](const auto& entry) {
            const Album& held = held_[entry.first].album;
            const AlbumRow* const there = library_.FindAlbum(held.artist, held.title);
            return there != nullptr && there != entry.second && !leaves(there);
        };
        while (std::erase_if(newcomers, isTaken) > 0) {
        }
    }

    void Rename(AlbumRow& album, const Album& held) {
        if (album.artist == held.artist && album.title == held.title) return;
        const std::array<FieldValue, 2> names{FieldValue{"Artist", held.artist},
                                              FieldValue{"Title", held.title}};
        oldNames_[&album] = NameOf(album);
        library_.Change(album, names);
        walk_.renamed.insert(album.id);
    }

    void MoveTrack(std::size_t lost) {
        TrackRow& row = *lost_[lost].row;
        const FoundFile& found = found_[*becomes_[lost]];
        const ListedFile& file = FileOf(found);
        const std::optional<SoundPrint> print = held_[found.held].kinds[found.file].print;
        const FieldValue path{"SoundFile", file.Name};
        oldPaths_[&row] = row.soundFile;
        steps_.Concerning(file.Name);
        if (!steps_.Try(FollowStep::MoveTrack,
                        [&] { library_.Change(row, std::span(&path, 1)); })) {
            becomes_[lost].reset();
            return;
        }
        walk_.followed.insert(row.id);
        const KnownSound* const known = sounds_.Of(row);
        if (print) {
            sounds_.Set(row, {.file = StateOf(file.Size, file.FileDate),
                              .print = *print,
                              .whole = known == nullptr ? std::nullopt : known->whole});
        }
        held_[found.held].kinds[found.file] = {};
    }

    void TellMoves() {
        for (std::size_t lost = 0; lost < lost_.size(); ++lost) {
            if (!becomes_[lost]) continue;
            const Exit& exit = exits_.at(lost_[lost].album);
            const bool isTogether = exit.isWhole && exit.tracks.size() == 1;
            if (isTogether && exit.first != lost) continue;
            const std::string& from = oldPaths_.at(lost_[lost].row);
            const std::string& to = PathOf(found_[*becomes_[lost]]);
            if (isTogether) {
                TellAlbum(*lost_[lost].album, exit, from, to);
            } else {
                std::string line = "Track followed to its new place: ";
                WriteLog(run_, LogSource, line.append(from).append(" -> ").append(to));
            }
        }
        for (const auto& [album, exit] : exits_) {
            const auto old = oldNames_.find(album);
            if (exit.first || old == oldNames_.end()) continue;
            WriteLog(run_, LogSource,
                     "Album followed its tracks: " + old->second + " -> " + NameOf(*album));
        }
    }

    void TellAlbum(const AlbumRow& album, const Exit& exit, const std::string& from,
                   const std::string& to) {
        const std::size_t count = exit.tracks.begin()->second;
        const std::string tracks = std::to_string(count) + (count == 1 ? " track: " : " tracks: ");
        const auto old = oldNames_.find(&album);
        const std::string before(ParentFolder(from)), now(ParentFolder(to));
        std::string places = before + " -> " + now;
        if (EqualIgnoringCase(before, now)) {
            if (old == oldNames_.end()) {
                places = NameOf(album) + ", files renamed in " + now;
            } else {
                places = old->second + " -> " + NameOf(album);
            }
        }
        WriteLog(run_, LogSource, "Album followed to its new place, " + tracks + places);
    }

    void TellTwins(const std::vector<MoveAnswer::Twins>& twins) {
        for (const MoveAnswer::Twins& same : twins) {
            const std::string& missing = lost_[same.lost.front()].row->soundFile;
            const std::string& fresh = PathOf(found_[same.found.front()]);
            std::string line = "Nobody can tell what became of ";
            line.append(missing).append(": the same sound is missing ");
            line.append(Times(same.lost.size())).append(" and new ");
            line.append(Times(same.found.size())).append(", as ").append(fresh);
            WriteLog(run_, LogSource, line + " for one. The new files count as new");
        }
    }

    /// A new file that could not be read may be any of the missing songs; so they stay for this
    /// run.
    void KeepWhereUnheard() {
        const FoundFile* unheard = nullptr;
        for (const FoundFile& found : found_) {
            const HeldAlbum::File& kind = held_[found.held].kinds[found.file];
            if (kind.isNew && !kind.print) unheard = &found;
        }
        if (unheard == nullptr) return;
        std::size_t kept = 0;
        for (std::size_t lost = 0; lost < lost_.size(); ++lost) {
            if (becomes_[lost] || lost_[lost].isDisplaced || lost_[lost].row->isWaiting) continue;
            const AlbumRow& album = *lost_[lost].album;
            walk_.unlisted.push_back({lost_[lost].row->soundFile, album.artist, album.title});
            ++kept;
        }
        if (kept == 0) return;
        WriteLog(run_, LogSource,
                 "Missing tracks that keep their rows in this run, since a new file could not be "
                 "read whole: " +
                     std::to_string(kept) + "; the file: " + PathOf(*unheard));
    }

    static std::string Times(std::size_t count) {
        return count == 1 ? "once" : std::to_string(count) + " times";
    }

    Walk& walk_;
    Run& run_;
    Library& library_;
    KnownSounds& sounds_;
    std::vector<HeldAlbum>& held_;
    const std::vector<LostTrack>& lost_;
    Steps steps_;
    MoveQuestion question_;
    std::vector<FoundFile> found_;
    std::vector<TrackRow*> rows_, owners_;  ///< of lost tracks; of found files, null for none
    std::vector<std::optional<std::size_t>> becomes_;
    std::vector<PushedOut> pushedOut_;
    std::map<AlbumRow*, Exit> exits_;
    std::map<const AlbumRow*, std::string> oldNames_;
    std::map<const TrackRow*, std::string> oldPaths_;
};

}  // namespace

bool FollowLostTracks(Walk& walk, KnownSounds& sounds, std::vector<HeldAlbum>& held,
                      const std::vector<LostTrack>& lost) {
    return Following(walk, sounds, held, lost).Perform();
}

}  // namespace quillon
