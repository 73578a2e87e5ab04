#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "database/cdjid.h"
#include "library/library.h"
#include "reconcile/unlisted.h"
#include "run/run.h"

namespace quillon {

/// The steps of refreshing the database.
enum class RefreshStep { Begin = 1, FindAbsentFolders = 2, ChangeRows = 3, KeepTags = 4 };
class MovedMusic;
class WaitingMusic;

/// A library folder on the walk.
struct WalkedRoot {
    std::string path;
    bool hasMusic = false;  ///< or artists that are left out on purpose
};

/// What one refresh carries from folder to folder.
struct Walk {
    /// Throws Failure when the library cannot be read.
    explicit Walk(Run& theRun);
    ~Walk();
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;

    Run& run;
    Library& library;  ///< with all counts and numbers set aside until the walk has been there
    CdjidSequence sequence;
    std::vector<WalkedRoot> roots;         ///< the run's library folders, each once
    std::vector<UnlistedFolder> unlisted;  ///< what could not be visited

    /// AlbumKey of the albums that have songs out of sight: all of their songs keep what they have.
    /// Numbers handed out now would be those of the missing songs.
    std::unordered_set<std::string> hidden;

    std::unique_ptr<WaitingMusic> waiting;  ///< null where nothing waits for its files
    std::unique_ptr<MovedMusic> moved;      ///< null where rows do not follow moved files

    /// Rows that have got new paths or names because their music has moved.
    std::unordered_set<TrackId> followed;
    std::unordered_set<AlbumId> renamed;

    DateTime savedAt;  ///< when counts and numbers were written last

    /// How many albums and tracks count as changed for nothing but their count or number, which
    /// return to what they were when nothing is swept in the end.
    std::size_t recounted = 0, renumbered = 0;
};

/// An album that is being processed.
struct Album {
    std::string artist;
    std::string title;
    std::int16_t trackCount = 0;
    std::string cdjid;  ///< NoCdjid while there is no row for it
};

}  // namespace quillon
