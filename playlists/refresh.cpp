#include "playlists/refresh.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "database/waiting_music.h"
#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "platform/files.h"
#include "playlists/list_likeness.h"
#include "playlists/list_repair.h"
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

constexpr std::size_t MostTold = 10;

class Refreshing {
  public:
    Refreshing(Run& run, Steps& steps)
        : run_(run), entries_(run.playlistEntries), steps_(steps), tracks_(run.TheLibrary()) {}

    void Perform() {
        if (tracks_.IsEmpty() || !FolderIsThere()) return;
        if (run_.movedMusic.KeepDays > 0) waiting_.emplace(run_);
        for (const FileEntry& file : Counted(run_, FilesInPlaylistFolder(run_))) {
            names_.insert(LowerCase(file.name));
            if (!entries_.ContentOf(file.name) && !HasPlaylistName(file.name)) continue;
            ForOne(file, [&] { Check(file); });
        }
        if (!run_.removals.Allow(run_, {.kind = Removable::Playlists, .names = goingAway_})) return;
        if (waiting_) SecureWaiting();
        for (const FileEntry& file : toDo_)
            ForOne(file, [&] { Settle(file); });
        if (waiting_) EndWaiting();
        EndSnapshot();
    }

  private:
    /// A folder whose lists have been captured does not disappear by itself.
    bool FolderIsThere() const {
        if (PlaylistFolderExists(run_)) return true;
        if (entries_.ReadCount() == 0 && !entries_.HasUnread()) return false;
        throw Failure(FailureNumber::PathNotFound, run_.settings.PlayListPath);
    }

    /// A failure costs this list alone.
    template <typename Work>
    void ForOne(const FileEntry& file, Work work) {
        run_.ShowItem("1. Update Existing Playlists - " + file.name);
        steps_.Concerning(file.path);
        steps_.Try(work);
        steps_.Concerning({});
    }

    std::span<const WaitingEntry> WaitingIn(const FileEntry& file) const {
        return waiting_ ? waiting_->EntriesOf(file.name) : std::span<const WaitingEntry>();
    }

    /// What is about to be taken out of lists is noted before that happens. What comes back stays
    /// noted until it has: both at once is put right by the next run.
    void SecureWaiting() {
        for (const auto& [name, entries] : newWaiting_) {
            std::vector<WaitingEntry> all = entries;
            for (const WaitingEntry& entry : waiting_->EntriesOf(name)) {
                if (std::ranges::find(all, entry.song, &WaitingEntry::song) == all.end())
                    all.push_back(entry);
            }
            std::ranges::stable_sort(all, {}, &WaitingEntry::position);
            oldWaiting_[name] = waiting_->EntriesOf(name);
            waiting_->SetEntries(name, std::move(all));
        }
        waiting_->Save();
    }

    /// Lists that could not be settled keep what is noted for both versions of them.
    void EndWaiting() {
        for (auto& [name, entries] : newWaiting_) {
            if (settled_.contains(name)) waiting_->SetEntries(name, std::move(entries));
        }
        for (const std::string& name : waiting_->Playlists()) {
            const bool isGone = !names_.contains(name) && !entries_.HasUnread();
            if (isGone || entries_.IsMadeAnew(name)) waiting_->SetEntries(name, {});
        }
        waiting_->Save();
    }

    /// What nothing would be left of goes only where it may have been a list.
    RepairedList Repaired(const FileEntry& file, std::string_view text,
                          std::span<const WaitingEntry> waiting) {
        RepairedList list = Repair(run_, tracks_, file.name, text, waiting);
        if (!list.isChanged || !list.IsEmpty() || MayBePlaylist(text)) return list;
        return {.lines = {},
                .messages = {"Playlist " + file.name +
                             " is left as it is, since it is no text; it seems to be another "
                             "program's"},
                .waiting = {}};
    }

    /// Finds out whether something is to be done.
    void Check(const FileEntry& file) {
        if (entries_.IsUnread(file.name) || entries_.IsMadeAnew(file.name)) return;
        const std::string text = ReadPlaylist(run_.files, file.path);
        if (entries_.ContentOf(file.name) != ContentOf(text)) {
            toDo_.push_back(file);
            return;
        }
        const RepairedList list = Repaired(file, text, WaitingIn(file));
        if (waiting_) newWaiting_[LowerCase(file.name)] = list.waiting;
        if (list.isChanged && list.IsEmpty()) goingAway_.push_back(file.path);
        if (list.isChanged || !list.messages.empty()) {
            toDo_.push_back(file);
        } else {
            settled_.insert(LowerCase(file.name));
            Finished(file);
        }
    }

    /// Does it. The list may have become another one in the meantime.
    void Settle(const FileEntry& file) {
        const std::string text = ReadPlaylist(run_.files, file.path);
        const std::optional<PlaylistContent> captured = entries_.ContentOf(file.name);
        if (captured == ContentOf(text)) {
            const auto old = oldWaiting_.find(LowerCase(file.name));
            const RepairedList list = Repaired(
                file, text, old == oldWaiting_.end() ? std::vector<WaitingEntry>() : old->second);
            if (Store(file, list, *captured)) {
                settled_.insert(LowerCase(file.name));
            } else {
                TellChanged(file, text);
            }
        } else if (captured) {
            TellChanged(file, text);
        } else {
            WriteLog(
                run_, LogSource,
                "Playlist " + file.name + " is new since this run began, and is left as it is");
        }
        Finished(file);
    }

    /// Puts the lines into the file's place if they differ from what it holds; false when another
    /// program has just changed it.
    bool Store(const FileEntry& file, const RepairedList& list, const PlaylistContent& captured) {
        const auto isSame = [&] { return HasContent(run_.files, file.path, captured); };
        if (!list.isChanged) {
            Tell(list);
            return true;
        }
        if (list.IsEmpty()) {
            if (!isSame()) return false;
            run_.files.DeleteFile(file.path);
            Tell(list);
            WriteLog(run_, LogSource,
                     "Playlist " + file.name + " delete because no valid entries remain");
            run_.removals.Note(Removable::Playlists, file.path);
            ++run_.counts.playlistsRemoved;
            return true;
        }
        const std::unique_ptr<TextWriter> writer = run_.files.CreateText(file.path);
        for (const std::string& line : list.lines) {
            writer->WriteBytes(line);
            writer->WriteBytes(PlaylistLineEnd);
        }
        if (!writer->CloseIf(isSame)) return false;
        Tell(list);
        ++run_.counts.playlistsRewritten;
        return true;
    }

    void Tell(const RepairedList& list) {
        for (const std::string& message : list.messages)
            WriteLog(run_, LogSource, message);
    }

    /// Whoever has changed the list may have written it by the old numbers or by the new ones.
    /// That cannot be determined, so the list stays, and entries that no longer name the same song
    /// are reported.
    void TellChanged(const FileEntry& file, std::string_view text) {
        const std::string told =
            "Playlist " + file.name + " was changed by another program during this run";
        const std::string moved = MovedEntries(file.name, text);
        if (moved.empty()) {
            WriteLog(run_, LogSource, told + ", and is left as it is");
        } else {
            LogError(run_, LogSource,
                     told + ", and is left as it is; entries that named other songs before: " +
                         moved + ". Choose them again where they are wrong");
        }
    }

    /// The entries that stood in the list when it was captured, and whose songs have other places
    /// now.
    std::string MovedEntries(const std::string& name, std::string_view text) const {
        std::string moved;
        std::size_t count = 0;
        for (const std::string_view bytes : LinesOf(text)) {
            const std::string line = AnsiToUtf8(bytes);
            const std::optional<PlaFields> fields = FirstTwoFields(Trim(line));
            const std::optional<std::int32_t> index =
                fields ? WholeIndex(fields->index) : std::nullopt;
            const auto position =
                index ? entries_.FindPlace(fields->cdjid, *index, name) : std::nullopt;
            if (!position) continue;
            const TrackRow* const there = tracks_.FindPlace(fields->cdjid, *index + 1);
            if (there != nullptr && IdOf(*there) == entries_.At(*position).ID) continue;
            if (++count <= MostTold) moved += (moved.empty() ? "" : ", ") + line;
        }
        if (count > MostTold) moved += " and " + std::to_string(count - MostTold) + " more";
        return moved;
    }

    /// The list means what it says: nothing of it has to be kept.
    void Finished(const FileEntry& file) {
        if (entries_.ContentOf(file.name)) finished_.insert(LowerCase(file.name));
    }

    /// Lists that are not finished are repaired by the next run, so what they mean is kept.
    void EndSnapshot() {
        if (finished_.size() == entries_.ReadCount() && !entries_.HasUnread()) {
            DiscardPlaylistSnapshot(run_);
            return;
        }
        const auto isKept = [this](std::string_view name) {
            return !finished_.contains(LowerCase(name));
        };
        ReducePlaylistSnapshot(run_, isKept, entries_.HasUnread());
    }

    Run& run_;
    PlaylistEntries& entries_;
    Steps& steps_;
    TrackIndex tracks_;
    std::optional<WaitingMusic> waiting_;  ///< nothing where no music waits for its files
    /// Entries that wait, by playlist in lower case: after this run, and before.
    std::map<std::string, std::vector<WaitingEntry>> newWaiting_, oldWaiting_;
    std::unordered_set<std::string> names_, settled_;  ///< of all lists, of those done; likewise
    std::vector<FileEntry> toDo_;
    std::vector<std::string> goingAway_;        ///< paths of lists with nothing left
    std::unordered_set<std::string> finished_;  ///< names in lower case
};

}  // namespace

void RefreshPlaylist(Run& run) {
    Steps steps(run, "Refresh Playlist Error:");
    run.ShowItem("1. Update Existing Playlists");
    // The brake has told why nothing goes on; the snapshot keeps what the lists mean.
    if (run.playlistEntries.NothingRead() || run.removals.Braked()) return;
    steps.Try([&] {
        // A list that follows its songs to places that the database does not have yet would name
        // others in the next run. Where it cannot be saved, the snapshot keeps what the lists mean.
        run.TheLibrary().Save();
        run.Flush();
        Refreshing(run, steps).Perform();
    });
}

}  // namespace quillon
