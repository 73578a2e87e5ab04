#pragma once

#include <cstdint>

#include "platform/host.h"

namespace quillon {

/// What becomes of music that is not where it was: [Library] and [Missing] of the host's settings
/// file. What is not there, or says nothing sensible, is off.
struct MovedMusicSettings {
    /// A row whose file is gone follows the same sound to its new place.
    bool FollowMovedFiles = false;
    /// For how many days a row waits for its file before it is removed; 0: it does not wait.
    std::int32_t KeepDays = 0;
};

MovedMusicSettings ReadMovedMusicSettings(Host& host);

}  // namespace quillon
