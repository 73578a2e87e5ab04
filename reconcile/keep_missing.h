#pragma once

#include <string>
#include <vector>

#include "reconcile/missing_music.h"

namespace quillon {

struct Walk;

/// The part of the missing music that waits for its files instead of being removed.
struct KeptMusic {
    struct Track {
        MissingMusic::Track track;
        bool isNew = false;  ///< was there when this run began
    };
    std::vector<Track> tracks;
    std::vector<AlbumRow*> albums;  ///< those that keep their rows without any track that is there
};

/// Takes out of `missing` what is to wait: [Missing] KeepDays says for how long. What is below
/// folders that were not seen waits on. Where it is doubtful that things are gone, those that were
/// there until now stay in what is planned, so that the brake has its say.
KeptMusic TakeOutWaiting(Walk& walk, MissingMusic& missing, const std::vector<std::string>& absent);

/// Puts it outside its albums' numbers and notes from when on it is missing; tells of what is newly
/// missed. False when that could not be kept: then nothing has changed,
/// and nothing may be swept.
bool KeepWaiting(Walk& walk, const KeptMusic& kept);

/// Forgets, and tells, what has waited and is in its album again. To be called when the numbers
/// have been written.
void ForgetReturned(Walk& walk);

}  // namespace quillon
