#include "playlists/capture.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/files.h"
#include "playlists/generated_rows.h"
#include "playlists/pla_line.h"
#include "playlists/playlist_folder.h"
#include "playlists/playlist_snapshot.h"
#include "playlists/playlist_text.h"
#include "playlists/track_index.h"
#include "run/counted.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class CaptureStep { ReadGenerated = 1, ReadExisting = 3, ReadList = 5, WriteSnapshot = 6 };

/// By more than what is lost when a time is stored.
bool IsLater(DateTime time, DateTime than) {
    constexpr double HalfASecond = 0.5 / (24 * 60 * 60);
    return time.days > than.days + HalfASecond;
}

/// Reads playlists into the working set.
class Capture {
  public:
    Capture(Run& run, const TrackIndex& tracks, const PlaylistSnapshot* earlier)
        : run_(run), tracks_(tracks), earlier_(earlier) {}

    void Read(const FileEntry& file) {
        const std::string text = ReadPlaylist(run_.files, file.path);
        const PlaylistContent content = ContentOf(text);
        const std::optional<std::vector<CapturedEntry>> earlier =
            EarlierEntries(file, text, content);
        if (earlier && HasOtherMeaning(*earlier)) ++fromSnapshot_;

        const auto begin = static_cast<PlaylistEntries::Position>(run_.playlistEntries.Count());
        for (const CapturedEntry& entry : earlier ? *earlier : PresentEntries(text))
            Add(file.name, entry);
        const auto end = static_cast<PlaylistEntries::Position>(run_.playlistEntries.Count());
        run_.playlistEntries.NoteRead(file.name, content);
        playlists_.push_back({file.name, content, begin, end});
    }

    std::vector<PlaylistRange> TakePlaylists() { return std::move(playlists_); }

    /// How many playlists mean something else than their lines say at present, because an
    /// interrupted run had captured them before the library changed.
    std::size_t FromSnapshot() const { return fromSnapshot_; }

  private:
    /// Calls visit(cdjid, index) for each line that names a song by its place.
    template <typename Visit>
    static void ForEachPlace(std::string_view text, Visit visit) {
        const std::vector<std::string_view> lines = LinesOf(text);
        for (std::size_t i = 1; i < lines.size(); ++i) {
            const std::string line = AnsiToUtf8(lines[i]);
            const std::optional<PlaFields> fields = FirstTwoFields(line);
            if (!fields || fields->index == WholeAlbumIndex) continue;
            const std::optional<std::int32_t> index = WholeIndex(fields->index);
            if (!index || *index == std::numeric_limits<std::int32_t>::max()) continue;
            visit(fields->cdjid, *index);
        }
    }

    /// What the lines mean at present; nothing for those that mean no song.
    std::vector<CapturedEntry> PresentEntries(std::string_view text) const {
        std::vector<CapturedEntry> entries;
        ForEachPlace(text, [&](std::string_view cdjid, std::int32_t index) {
            if (std::optional<CapturedEntry> entry = Present(cdjid, index))
                entries.push_back(std::move(*entry));
        });
        return entries;
    }

    bool HasOtherMeaning(const std::vector<CapturedEntry>& entries) const {
        return std::any_of(entries.begin(), entries.end(), [this](const CapturedEntry& entry) {
            const TrackRow* const track = tracks_.FindPlace(entry.cdjid, entry.index + 1);
            return track == nullptr || IdOf(*track) != entry.id;
        });
    }

    std::optional<CapturedEntry> Present(std::string_view cdjid, std::int32_t index) const {
        const TrackRow* const track = tracks_.FindPlace(cdjid, index + 1);
        if (track == nullptr) return std::nullopt;
        return CapturedEntry{.cdjid = std::string(cdjid),
                             .index = index,
                             .id = IdOf(*track),
                             .traits = TraitsOf(*track)};
    }

    /// What the lines meant when an earlier run had captured the list or its places; nothing where
    /// none had, or where the list has been changed since.
    std::optional<std::vector<CapturedEntry>> EarlierEntries(const FileEntry& file,
                                                             std::string_view text,
                                                             const PlaylistContent& content) {
        if (earlier_ == nullptr) return std::nullopt;
        std::vector<CapturedEntry> entries;
        const auto take = [&](const CapturedEntry& entry) {
            if (std::optional<CapturedEntry> judged = Judged(entry))
                entries.push_back(std::move(*judged));
        };
        const CapturedPlaylist* const known = earlier_->Find(file.name);
        if (known != nullptr) {
            if (known->content != content) return std::nullopt;
            for (const CapturedEntry& entry : known->entries)
                take(entry);
            return entries;
        }
        const CapturedPlaces* const places = earlier_->PlacesFor(file.name);
        if (places == nullptr || IsLater(file.modified, places->time)) return std::nullopt;
        const PlaceIndex& index = IndexOf(*places);
        ForEachPlace(text, [&](std::string_view cdjid, std::int32_t number) {
            const auto found = index.find(PlaceKey(cdjid, number));
            if (found != index.end()) take(*found->second);
        });
        return entries;
    }

    /// Entries by place, letter case apart.
    using PlaceIndex = std::unordered_map<std::string, const CapturedEntry*>;

    static std::string PlaceKey(std::string_view cdjid, std::int32_t index) {
        return LowerCase(cdjid) + ' ' + std::to_string(index);
    }

    const PlaceIndex& IndexOf(const CapturedPlaces& places) {
        PlaceIndex& index = placeIndexes_[&places];
        if (index.empty()) {
            for (const CapturedEntry& entry : places.entries)
                index.try_emplace(PlaceKey(entry.cdjid, entry.index), &entry);
        }
        return index;
    }

    /// The entry, provided that its row is still the one that was captured, or has gone; what its
    /// line means at present where another row has the key.
    std::optional<CapturedEntry> Judged(const CapturedEntry& entry) const {
        const TrackRow* const track = tracks_.FindId(entry.id);
        if (track == nullptr) return entry;
        return TraitsOf(*track).Fit(entry.traits) ? entry : Present(entry.cdjid, entry.index);
    }

    /// One song of a playlist counts once; another place of it stays, to be known for its double.
    void Add(const std::string& playlist, const CapturedEntry& entry) {
        if (run_.playlistEntries.FindPlace(entry.cdjid, entry.index, playlist)) return;
        run_.playlistEntries.Add(
            {.ID = entry.id, .Track = entry.index, .CDJID = entry.cdjid, .Playlist = playlist});
    }

    Run& run_;
    const TrackIndex& tracks_;
    const PlaylistSnapshot* earlier_;
    std::vector<PlaylistRange> playlists_;
    std::unordered_map<const CapturedPlaces*, PlaceIndex> placeIndexes_;  ///< of those needed
    std::size_t fromSnapshot_ = 0;
};

/// The whole of the second step.
class CaptureExisting {
  public:
    CaptureExisting(Run& run, Steps& steps, const GeneratedRows& generated)
        : run_(run), steps_(steps), generated_(generated), tracks_(run.TheLibrary()) {}

    void Perform() {
        if (tracks_.IsEmpty()) return KnowNothing();
        // A snapshot that is there and cannot be read says what the lists mean; going by the lists
        // and writing another one would be worse than to leave both as they are.
        if (std::optional<PlaylistSnapshot> earlier = ReadPlaylistSnapshot(run_))
            earlier_ = std::make_shared<const PlaylistSnapshot>(*std::move(earlier));
        if (earlier_ && earlier_->IsForeignTo(tracks_)) earlier_.reset();
        bool isThere = false;
        const bool isListed = steps_.Try(CaptureStep::ReadExisting, [&] {
            isThere = PlaylistFolderExists(run_);
            if (isThere) folder_ = ReadPlaylistFolder(run_, steps_);
        });
        if (!isListed) return KeepAll();
        // An unmounted drive is an empty folder, or none.
        if (folder_.IsEmpty() && !MayMissAll(run_)) return KeepAll();
        if (!isThere) return KnowNothing();
        ReadLists();
    }

  private:
    void KnowNothing() { run_.playlistEntries.NoteNothingRead(); }

    /// Nobody knows which lists there are, so what any of them may mean is kept.
    void KeepAll() {
        KnowNothing();
        SnapshotContent content;
        bool areAllKept = false;
        if (earlier_) {
            for (const CapturedPlaylist& playlist : earlier_->Playlists())
                content.takenOver.push_back(&playlist);
            content.places = earlier_->Places();
            const auto isForAll = [](const CapturedPlaces& p) { return p.names.empty(); };
            areAllKept = std::any_of(content.places.begin(), content.places.end(), isForAll);
        }
        if (!areAllKept) content.places.push_back(PresentPlaces(tracks_, run_.clock.Now()));
        Write(std::move(content));
    }

    void ReadLists() {
        Capture capture(run_, tracks_, earlier_.get());
        for (const std::string& name : folder_.unread)
            NoteUnread(name);
        for (const FileEntry& file : Counted(run_, folder_.lists)) {
            if (generated_.HaveName(file.name)) {
                run_.playlistEntries.NoteMadeAnew(file.name);
                continue;
            }
            run_.ShowItem("1. Capture Existing Playlists - " + file.name);
            steps_.Concerning(file.path);
            // One that cannot be read must not cost the others their songs.
            if (!steps_.Try(CaptureStep::ReadList, [&] { capture.Read(file); }))
                NoteUnread(file.name);
        }
        steps_.Concerning({});
        if (capture.FromSnapshot() > 0) {
            WriteLog(run_, LogSource,
                     "An earlier run was interrupted; playlists taken as it had captured them: " +
                         std::to_string(capture.FromSnapshot()));
        }
        // What is kept for lists that are out of sight stays for them.
        if (earlier_ && run_.playlistEntries.ReadCount() == 0 && unread_.empty())
            return KnowNothing();
        SnapshotContent content;
        content.captured = capture.TakePlaylists();
        AddUnread(content);
        Write(std::move(content));
    }

    void NoteUnread(const std::string& name) {
        run_.playlistEntries.NoteUnread(name);
        unread_.push_back(name);
    }

    /// Keeps for each unread list what is known of it from earlier, else what all places mean now.
    void AddUnread(SnapshotContent& content) const {
        std::map<const CapturedPlaces*, std::vector<std::string>> names;
        for (const std::string& name : unread_) {
            const CapturedPlaylist* const known = earlier_ ? earlier_->Find(name) : nullptr;
            if (known != nullptr) {
                content.takenOver.push_back(known);
            } else {
                names[earlier_ ? earlier_->PlacesFor(name) : nullptr].push_back(name);
            }
        }
        for (auto& [earlier, lists] : names) {
            content.places.push_back(earlier == nullptr ? PresentPlaces(tracks_, run_.clock.Now())
                                                        : *earlier);
            content.places.back().names = std::move(lists);
        }
    }

    void Write(SnapshotContent content) {
        run_.isSecured &= steps_.Try(CaptureStep::WriteSnapshot,
                                     [&] { WritePlaylistSnapshot(run_, tracks_, content); });
        // Songs may be replaced by others while the library changes; then it is written again.
        run_.playlistEntries.OnKeep([&run = run_, earlier = earlier_, kept = std::move(content)] {
            WritePlaylistSnapshot(run, TrackIndex(run.TheLibrary()), kept);
        });
    }

    Run& run_;
    Steps& steps_;
    const GeneratedRows& generated_;
    TrackIndex tracks_;
    std::shared_ptr<const PlaylistSnapshot> earlier_;  ///< null: none
    PlaylistFolder folder_;
    std::vector<std::string> unread_;  ///< names
};

}  // namespace

void BuildORsRecordset(Run& run) {
    run.playlistEntries = PlaylistEntries();
}

void CapturePlaylists(Run& run) {
    Steps steps(run, "Capture Playlists Error:");
    run.ShowItem("1. Delete Previously AutoGenerated Playlists");
    GeneratedRows generated;
    steps.Try(CaptureStep::ReadGenerated, [&] { generated = ReadGeneratedRows(run); });
    run.ShowItem("2. Capture Existing Playlists");
    if (run.AbortRequested) return;
    // What follows takes the working set for complete: a playlist of which it knows nothing would
    // lose every entry, and any other whose songs move meanwhile would name others.
    if (!steps.Try(CaptureStep::ReadExisting,
                   [&] { CaptureExisting(run, steps, generated).Perform(); })) {
        run.playlistEntries.NoteNothingRead();
        run.isSecured = false;
    }
}

}  // namespace quillon
