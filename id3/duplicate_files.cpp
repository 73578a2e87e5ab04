#include "id3/duplicate_files.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "id3/album_plan.h"
#include "id3/same_sound.h"
#include "id3/track_of_file.h"
#include "platform/files.h"
#include "platform/host.h"
#include "run/log.h"
#include "run/paths.h"
#include "run/steps.h"

namespace quillon {
namespace {

TagStep StepOf(const DuplicateFile& duplicate) {
    return duplicate.byBrackets ? TagStep::RoundBrackets : TagStep::NameByTitle;
}

class DuplicateRemoval {
  public:
    DuplicateRemoval(Run& run, Steps& steps, std::vector<AlbumRest> rests)
        : run_(run), steps_(steps), rests_(std::move(rests)) {}

    void Remove() {
        Choose();
        if (MayRemove()) {
            if (HandOver()) {
                for (Going& going : going_)
                    going.hasGone = going.isReady && RemoveFile(going);
            }
            KeepIfAnyStays();
        }
        std::size_t next = 0;
        for (AlbumRest& rest : rests_)
            FinishAlbum(rest, next);
    }

  private:
    /// A duplicate that only the run's limits can still keep.
    struct Going {
        const DuplicateFile* duplicate;
        TrackRow* row = nullptr;
        std::string soundFile = {};  ///< as the row had it
        bool isHandedOver = false;   ///< its row has become that of the other file
        bool isReady = false, hasGone = false;
    };

    void Choose() {
        const bool onlyIdentical = OnlyIdenticalAreRemoved(run_.host);
        for (const AlbumRest& rest : rests_) {
            for (const DuplicateFile& duplicate : rest.duplicates) {
                if (!run_.removals.Braked() && IsDuplicate(duplicate, onlyIdentical))
                    going_.push_back({&duplicate});
            }
        }
    }

    bool IsDuplicate(const DuplicateFile& duplicate, bool onlyIdentical) {
        const std::string& path = duplicate.file.path;
        std::string objection;
        steps_.Concerning(path);
        const bool isKnown =
            steps_.Try(StepOf(duplicate), [&] { objection = Objection(duplicate, onlyIdentical); });
        if (!objection.empty()) WriteLog(run_, LogSource, path + " stays" + objection);
        return isKnown && objection.empty();
    }

    /// Why the file must stay; "" if it may be removed.
    std::string Objection(const DuplicateFile& duplicate, bool onlyIdentical) {
        const std::string& path = duplicate.file.path;
        const std::string twin(LastName(duplicate.twin));
        if (!run_.files.FileExists(duplicate.twin)) return ", since there is no " + twin;
        if (run_.files.IsSameFile(path, duplicate.twin))
            return ", since " + twin + " is a link to the same file";
        if (onlyIdentical && !HaveSameSound(run_.files, path, duplicate.twin)) {
            return ": by name or tag it is the same song as " + twin + ", but its sound is another";
        }
        return "";
    }

    bool MayRemove() {
        PlannedRemoval planned{.kind = Removable::MusicFiles, .names = {}};
        for (const Going& going : going_)
            planned.names.push_back(going.duplicate->file.path);
        return !planned.names.empty() && run_.removals.Allow(run_, planned);
    }

    /// What the database and the playlists know of the files goes to those that stay; durably,
    /// since nobody could tell afterwards.
    bool HandOver() {
        for (Going& going : going_) {
            steps_.Concerning(going.duplicate->file.path);
            going.isReady = steps_.Try(StepOf(*going.duplicate), [&] { HandOverRow(going); });
            if (!going.isReady) TakeBackRow(going);
        }
        const bool isKept = steps_.Try(TagStep::NameByTitle, [&] {
            run_.playlistEntries.Keep();
            run_.Flush();
        });
        if (isKept) return true;
        for (const Going& going : going_)
            TakeBackRow(going);
        return false;
    }

    void HandOverRow(Going& going) {
        const DuplicateFile& duplicate = *going.duplicate;
        const std::string& path = duplicate.file.path;
        going.row = run_.TheLibrary().FindTrack(path);
        if (going.row == nullptr) return;
        if (const TrackRow* const twin = run_.TheLibrary().FindTrack(duplicate.twin)) {
            run_.playlistEntries.SongBecame(static_cast<std::int32_t>(going.row->id),
                                            static_cast<std::int32_t>(twin->id));
        } else {
            going.isHandedOver = true;
            going.soundFile = going.row->soundFile;
            SetSoundFile(*going.row, StoredAs(going.soundFile, path, duplicate.twin));
        }
    }

    void TakeBackRow(const Going& going) {
        if (going.row == nullptr) return;
        run_.playlistEntries.SongStays(static_cast<std::int32_t>(going.row->id));
        if (!going.isHandedOver) return;
        steps_.Try(TagStep::NameByTitle, [&] { SetSoundFile(*going.row, going.soundFile); });
    }

    /// The playlists' snapshot says that all of them are removed: it is written anew if some stay.
    void KeepIfAnyStays() {
        const auto hasGone = [](const Going& going) { return going.hasGone; };
        if (std::all_of(going_.begin(), going_.end(), hasGone)) return;
        steps_.Try(TagStep::NameByTitle, [&] {
            run_.playlistEntries.Keep();
            run_.Flush();
        });
    }

    void SetSoundFile(TrackRow& row, const std::string& soundFile) {
        const FieldValue field{"SoundFile", soundFile};
        run_.TheLibrary().Change(row, std::span(&field, 1));
    }

    bool RemoveFile(Going& going) {
        const DuplicateFile& duplicate = *going.duplicate;
        const std::string& path = duplicate.file.path;
        steps_.Concerning(path);
        if (!steps_.Try(StepOf(duplicate), [&] { run_.files.DeleteFile(path); })) {
            TakeBackRow(going);
            return false;
        }
        ++run_.counts.filesRemoved;
        run_.removals.Note(Removable::MusicFiles, path);
        WriteLog(run_, LogSource,
                 path + " was removed as a duplicate of " + std::string(LastName(duplicate.twin)));
        return true;
    }

    /// Renames what waited for names, and brings the rows of all that stays in line. `next` is the
    /// album's first file among those that could go.
    void FinishAlbum(AlbumRest& rest, std::size_t& next) {
        Renames renames(run_, steps_);
        std::vector<std::pair<ComparedFile*, std::size_t>> renamed;
        for (DuplicateFile& duplicate : rest.duplicates) {
            const bool isNext = next < going_.size() && going_[next].duplicate == &duplicate;
            if (isNext && going_[next++].hasGone) continue;
            renamed.emplace_back(&duplicate.file, KeepFile(duplicate, renames));
        }
        for (WaitingRename& rename : rest.renames) {
            const std::size_t number = renames.Add(rename.file.path, rename.to, rename.title);
            renamed.emplace_back(&rename.file, number);
        }
        renames.Commit();
        for (auto& [file, number] : renamed) {
            file->path = renames.PathOf(number);
            if (!renames.IsDone(number)) file->newTitle.reset();
            UpdateForID3Info(run_, *file);
        }
    }

    /// A duplicate that stays loses its brackets or temporary name at least.
    std::size_t KeepFile(const DuplicateFile& duplicate, Renames& renames) {
        const std::string& path = duplicate.file.path;
        bool isFree = false;
        if (!duplicate.pathIfKept.empty()) {
            steps_.Concerning(path);
            steps_.Try(StepOf(duplicate),
                       [&] { isFree = !run_.files.FileExists(duplicate.pathIfKept); });
        }
        if (!isFree) return renames.Keep(path);
        return renames.Add(path, duplicate.pathIfKept, Renames::RowTitle::RoundBrackets);
    }

    Run& run_;
    Steps& steps_;
    std::vector<AlbumRest> rests_;
    std::vector<Going> going_;
};

}  // namespace

bool OnlyIdenticalAreRemoved(Host& host) {
    return !IsSwitchedOff(host.GetINISetting("Removed", "OnlyIdentical", "0", HostSettingsFile));
}

void RemoveDuplicateFiles(Run& run, std::vector<AlbumRest> rests) {
    if (rests.empty()) return;
    Steps steps(run, "VerifyID3TagsFolder");
    DuplicateRemoval(run, steps, std::move(rests)).Remove();
}

}  // namespace quillon
