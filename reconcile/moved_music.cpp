#include "reconcile/moved_music.h"

#include <algorithm>
#include <map>
#include <utility>

#include "platform/basic_text.h"
#include "reconcile/follow_moved.h"
#include "reconcile/walked_album.h"
#include "run/counted.h"
#include "tags/heard_sounds.h"

namespace quillon {
namespace {

/// Where so many files cannot be read, the disk is to blame, and each try takes its time.
constexpr std::size_t MostFailures = 10;

FileState StateOf(const ListedFile& file) {
    return StateOf(file.Size, file.FileDate);
}

bool HoldsQuote(const std::string& text) {
    return text.find('"') != std::string::npos;
}

}  // namespace

MovedMusic::MovedMusic(Walk& walk)
    : walk_(walk),
      run_(walk.run),
      sounds_(walk.run, walk.library),
      steps_(walk.run, "FollowMovedFiles") {
    hasRows_ = std::ranges::any_of(
        walk.library.Tracks(), [](const TrackRow& track) { return track.isOwn && !track.isGone; });
}

bool MovedMusic::HoldBack(const Album& album, FileList& files) {
    // Without any rows nothing can be missing.
    if (isSettling_ || !hasRows_ || files.empty()) return false;
    std::vector<HeldAlbum::File> kinds;
    kinds.reserve(files.size());
    bool isHeld = false;
    for (const ListedFile& file : files) {
        kinds.push_back(KindOf(file));
        isHeld |= kinds.back().isNew || kinds.back().displaced != nullptr;
    }
    const bool hasRow = HasRow(album);
    if (!isHeld && hasRow) return false;
    isRegrouped_ |= !hasRow;
    for (const ListedFile& file : files) {
        if (const TrackRow* const row = walk_.library.FindTrack(file.Name)) claimed_.insert(row);
    }
    held_.push_back({album, std::move(files), std::move(kinds)});
    return true;
}

/// In the flat layout files get another album by their tags.
bool MovedMusic::HasRow(const Album& album) const {
    const bool isNamed = !HoldsQuote(album.artist + album.title);
    return !isNamed || walk_.library.FindAlbum(album.artist, album.title) != nullptr;
}

HeldAlbum::File MovedMusic::KindOf(const ListedFile& file) {
    HeldAlbum::File kind;
    TrackRow* const row = walk_.library.FindTrack(file.Name);
    if (row == nullptr) {
        kind.isNew = !HoldsQuote(file.Name);
        return kind;
    }
    const KnownSound* const known = sounds_.Of(*row);
    const FileState state = StateOf(file);
    if (known == nullptr || known->file == state) return kind;
    kind.print = Print(file.Name, state);
    if (!kind.print) return kind;
    if (*kind.print == known->print) {
        // Only its tags have changed.
        sounds_.Set(*row, {.file = state, .print = known->print, .whole = known->whole});
    } else {
        kind.displaced = row;
    }
    return kind;
}

void MovedMusic::NoteSeen(const FileList& files) {
    for (const ListedFile& file : files) {
        TrackRow* const row = walk_.library.FindTrack(file.Name);
        // Something may stand before the drive of a stored path.
        if (row == nullptr || !EqualIgnoringCase(row->soundFile.Text(), file.Name)) continue;
        const KnownSound* const known = sounds_.Of(*row);
        if (known == nullptr || known->file != StateOf(file))
            unread_.push_back({row, StateOf(file)});
    }
}

bool MovedMusic::Settle(const std::vector<std::string>& absent) {
    isSettling_ = true;
    if (run_.AbortRequested) return true;
    if (!held_.empty() && !Follow(absent)) return false;
    for (HeldAlbum& held : held_) {
        run_.ProcessEvents();
        if (run_.AbortRequested) return true;
        std::vector<std::pair<std::string, KnownSound>> heard;
        for (std::size_t i = 0; i < held.files.size(); ++i) {
            const ListedFile& file = held.files[i];
            if (const auto& print = held.kinds[i].print)
                heard.emplace_back(file.Name, KnownSound{StateOf(file), *print, {}});
        }
        ProcessAlbum(walk_, std::move(held.album), std::move(held.files));
        SaveNowAndThen(walk_);
        for (const auto& [path, sound] : heard) {
            const TrackRow* const row = walk_.library.FindTrack(path);
            if (row != nullptr) sounds_.Set(*row, sound);
        }
    }
    held_.clear();
    return true;
}

bool MovedMusic::Follow(const std::vector<std::string>& absent) {
    const std::vector<LostTrack> lost = FindLostTracks(walk_, held_, claimed_, absent);
    if (lost.empty() && !isRegrouped_) return true;
    if (!lost.empty()) ReadFound();
    if (run_.AbortRequested) return true;
    return FollowLostTracks(walk_, sounds_, held_, lost);
}

/// Reads the sounds of files that are new.
void MovedMusic::ReadFound() {
    for (HeldAlbum& held : Counted(run_, held_)) {
        run_.ShowItem("Look for moved music in " + held.album.artist + '\\' + held.album.title);
        for (std::size_t i = 0; i < held.files.size(); ++i) {
            if (!MayGoOn()) return;
            const ListedFile& file = held.files[i];
            if (held.kinds[i].isNew) held.kinds[i].print = Print(file.Name, StateOf(file));
        }
    }
}

std::optional<SoundPrint> MovedMusic::Print(const std::string& path, const FileState& file) {
    std::optional<SoundPrint> print;
    if (run_.heardSounds) print = run_.heardSounds->Find(path, file);
    if (print) return print;
    if (failures_ >= MostFailures) return print;
    steps_.Concerning(path);
    if (!steps_.Try(FollowStep::ReadSound, [&] { print = ReadSoundPrint(run_.files, path, file); }))
        ++failures_;
    return print;
}

bool MovedMusic::MayGoOn() const {
    return !run_.AbortRequested && failures_ < MostFailures;
}

void MovedMusic::Remember() {
    ReadUnread();
    if (sounds_.IsChanged()) ReadTwins();
    steps_.Concerning({});
    steps_.Try(FollowStep::KeepSounds, [this] { sounds_.Save(); });
}

void MovedMusic::ReadUnread() {
    for (const Unread& unread : Counted(run_, unread_)) {
        if (!MayGoOn()) return;
        const KnownSound* const known = sounds_.Of(*unread.track);
        if (unread.track->isGone || (known != nullptr && known->file == unread.file)) continue;
        run_.ShowItem("Listen to new music: " + unread.track->soundFile.Text());
        if (const auto print = Print(unread.track->soundFile, unread.file))
            sounds_.Set(*unread.track, {.file = unread.file, .print = *print});
    }
}

/// Two sounds whose samples agree are read whole, so that they can be told apart later.
void MovedMusic::ReadTwins() {
    using Key = std::pair<std::uint64_t, std::uint64_t>;
    std::vector<std::pair<Key, TrackRow*>> tracks;
    for (TrackRow& track : walk_.library.Tracks()) {
        const KnownSound* const known = track.isGone ? nullptr : sounds_.Of(track);
        if (known != nullptr && known->print.size > 0)
            tracks.emplace_back(Key(known->print.size, known->print.samples), &track);
    }
    std::ranges::sort(tracks, {}, [](const auto& entry) { return entry.first; });
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        const bool hasTwin = (i > 0 && tracks[i - 1].first == tracks[i].first) ||
                             (i + 1 < tracks.size() && tracks[i + 1].first == tracks[i].first);
        TrackRow& track = *tracks[i].second;
        if (!hasTwin || track.isWaiting) continue;
        KnownSound known = *sounds_.Of(track);
        if (known.whole) continue;
        if (!MayGoOn()) return;
        steps_.Concerning(track.soundFile);
        const bool isRead = steps_.Try(FollowStep::ReadTwin, [&] {
            known.whole = ReadWholeSound(run_.files, track.soundFile, known.file);
        });
        if (!isRead) ++failures_;
        if (known.whole) sounds_.Set(track, known);
    }
}

}  // namespace quillon
