#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "reconcile/file_list.h"
#include "reconcile/known_sounds.h"
#include "reconcile/walk.h"
#include "run/steps.h"

namespace quillon {

/// An album with files that no row has, or that hold another song than before. It waits until the
/// walk has seen everything, since its songs may be those that are missing elsewhere.
struct HeldAlbum {
    struct File {
        TrackRow* displaced = nullptr;  ///< its row, whose song it no longer holds
        bool isNew = false;             ///< no row has it
        std::optional<SoundPrint> print = {};
    };

    Album album;
    FileList files;
    std::vector<File> kinds;  ///< of the files
};

/// The steps of following moved music.
enum class FollowStep {
    ReadSound = 1,
    KeepSounds = 2,
    ReadTwin = 3,
    ReadWholeSound = 4,
    SecurePlaylists = 5,
    RenameAlbum = 6,
    MoveTrack = 7
};

/// Lets rows follow music that was moved or renamed. Knows the sounds of the library's tracks, and
/// holds albums with new files back until all has been seen.
class MovedMusic {
  public:
    /// Failure when what is known of the sounds cannot be read.
    explicit MovedMusic(Walk& walk);

    /// Whether the album is held back; then its files have been taken.
    bool HoldBack(const Album& album, FileList& files);

    /// These files of an album have their rows now.
    void NoteSeen(const FileList& files);

    /// Lets the rows of missing tracks follow, then brings the albums that were held back into
    /// line. Nothing is missing below the folders that are absent. False when nothing may be swept.
    bool Settle(const std::vector<std::string>& absent);

    /// Reads the sounds of files that are new or have changed, and keeps all for the next run.
    void Remember();

  private:
    struct Unread {
        TrackRow* track = nullptr;
        FileState file;
    };

    bool HasRow(const Album& album) const;
    HeldAlbum::File KindOf(const ListedFile& file);
    bool Follow(const std::vector<std::string>& absent);
    void ReadFound();
    void ReadUnread();
    void ReadTwins();
    std::optional<SoundPrint> Print(const std::string& path, const FileState& file);
    bool MayGoOn() const;

    Walk& walk_;
    Run& run_;
    KnownSounds sounds_;
    Steps steps_;
    std::vector<HeldAlbum> held_;
    std::unordered_set<const TrackRow*> claimed_;  ///< their files are in albums held back
    std::vector<Unread> unread_;
    bool hasRows_ = false, isSettling_ = false;
    bool isRegrouped_ = false;  ///< whether tracks may have got another album
    std::size_t failures_ = 0;
};

}  // namespace quillon
