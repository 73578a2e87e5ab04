#include "database/waiting_music.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <ranges>
#include <utility>

#include "database/row_mark.h"
#include "database/snapshot_file.h"
#include "platform/basic_text.h"
#include "run/log.h"
#include "run/run.h"

namespace quillon {
namespace {

constexpr std::string_view SongKind = "Song", ListKind = "List", EntryKind = "Entry";
constexpr std::array Kinds{SongKind, ListKind, EntryKind};
constexpr SnapshotFormat Format{.title = "Quillon missing music 1", .kinds = Kinds};
constexpr double SecondsADay = 24 * 60 * 60;

void WriteRow(SnapshotWriter& line, const TrackRow& track) {
    const RowMark mark = MarkOf(track);
    line.Whole(static_cast<std::int64_t>(track.id)).Whole(mark.path).Whole(mark.added);
}

/// The row that these words name; null where there is no such row, or where it is another one.
TrackRow* ReadRow(SnapshotLine& line, Library& library) {
    const TrackId id{line.Whole<std::int64_t>()};
    RowMark mark;
    mark.path = line.Whole<std::uint32_t>();
    mark.added = line.Whole<std::uint32_t>();
    TrackRow* const track = library.FindTrack(id);
    return track != nullptr && mark.Fits(MarkOf(*track)) ? track : nullptr;
}

}  // namespace

std::string WaitingMusicPath(std::string_view database) {
    return std::string(database) + ".missing";
}

std::string WaitingMusic::Path() const {
    return WaitingMusicPath(run_.settings.Nirvis_CDJ_DB);
}

WaitingMusic::WaitingMusic(Run& run) : run_(run) {
    if (run_.files.FileExists(Path())) Read();
    Library& library = run_.TheLibrary();
    for (const auto& [id, song] : songs_) {
        TrackRow* const track = library.FindTrack(id);
        // A run that was killed has noted the row and not changed it.
        track->isWaiting = track->number.Truth().value_or(0) == 0;
        AlbumRow* const album = library.AlbumOf(*track);
        if (track->isWaiting && album != nullptr && album->count.Truth().value_or(0) == 0)
            album->isWaiting = true;
    }
}

void WaitingMusic::Read() {
    Library& library = run_.TheLibrary();
    std::string list;
    const auto take = [&](std::string_view kind, SnapshotLine& line) {
        if (kind == ListKind) {
            list = line.Text();
        } else if (kind == EntryKind) {
            const auto position = line.Whole<std::size_t>();
            const TrackRow* const track = ReadRow(line, library);
            if (track != nullptr) entries_[list].push_back({position, track->id});
            isChanged_ |= track == nullptr;
        } else {
            const TrackRow* const track = ReadRow(line, library);
            WaitingSong song;
            song.number = line.Whole<std::int32_t>();
            song.since.days = static_cast<double>(line.Whole<std::int64_t>()) / SecondsADay;
            if (track != nullptr) songs_[track->id] = song;
            isChanged_ |= track == nullptr;
        }
    };
    if (ReadSnapshot(run_.files, Path(), Format, take)) return;
    songs_.clear();
    entries_.clear();
    isChanged_ = true;
    LogError(run_, LogSource,
             "What is known of missing music is damaged, and is made anew; the days are counted "
             "from today on, and playlists do not get back what they lack at present: " +
                 Path());
}

const WaitingSong* WaitingMusic::Find(TrackId song) const {
    const auto found = songs_.find(song);
    return found == songs_.end() ? nullptr : &found->second;
}

void WaitingMusic::Add(TrackId song, const WaitingSong& waiting) {
    songs_[song] = waiting;
    isChanged_ = true;
}

void WaitingMusic::Remove(TrackId song) {
    isChanged_ |= songs_.erase(song) > 0;
}

const std::vector<WaitingEntry>& WaitingMusic::EntriesOf(std::string_view playlist) const {
    static const std::vector<WaitingEntry> none;
    const auto found = entries_.find(LowerCase(playlist));
    return found == entries_.end() ? none : found->second;
}

void WaitingMusic::SetEntries(std::string_view playlist, std::vector<WaitingEntry> entries) {
    if (EntriesOf(playlist) == entries) return;
    isChanged_ = true;
    const std::string key = LowerCase(playlist);
    if (entries.empty()) {
        entries_.erase(key);
    } else {
        entries_[key] = std::move(entries);
    }
}

std::vector<std::string> WaitingMusic::Playlists() const {
    const auto names = std::views::keys(entries_);
    return {names.begin(), names.end()};
}

void WaitingMusic::ForgetGone() {
    const auto isGone = [this](TrackId id) { return run_.TheLibrary().FindTrack(id) == nullptr; };
    std::erase_if(songs_, [&](const auto& song) { return isGone(song.first); });
    for (auto& [playlist, entries] : entries_)
        std::erase_if(entries, [&](const WaitingEntry& entry) { return isGone(entry.song); });
    std::erase_if(entries_, [](const auto& list) { return list.second.empty(); });
}

void WaitingMusic::Save() {
    if (!isChanged_) return;
    ForgetGone();
    Library& library = run_.TheLibrary();
    if (songs_.empty() && entries_.empty()) {
        if (run_.files.FileExists(Path())) run_.files.DeleteFile(Path());
        isChanged_ = false;
        return;
    }
    SnapshotWriter file(run_.files, Path(), Format);
    for (const auto& [id, song] : songs_) {
        WriteRow(file.Line(SongKind), *library.FindTrack(id));
        file.Whole(song.number).Whole(std::llround(song.since.days * SecondsADay));
    }
    for (const auto& [name, entries] : entries_) {
        file.Line(ListKind).Text(name);
        for (const WaitingEntry& entry : entries) {
            WriteRow(file.Line(EntryKind).Whole(static_cast<std::int64_t>(entry.position)),
                     *library.FindTrack(entry.song));
        }
    }
    file.Close();
    isChanged_ = false;
}

}  // namespace quillon
