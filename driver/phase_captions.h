#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "platform/window.h"

namespace quillon {

/// The captions of the phase indicators. They are known to users and their scripts by these very
/// letters, misspelling and numbering included.
constexpr std::array<std::string_view, PhaseCount> PhaseCaptions = {
    "1. Capture Playlists",
    "2. Remove Duplicates",
    "3. Verify ID3",
    "4. Add Folder Tracks to Library",
    "5. Add Library Tracks to Download Table",
    "6. Correlate Download Table with Library",
    "7. Add Artist to Download Table",
    "8. Updatae Playlist References",
    "9. Create New Playlists",
    "10. Verify Album Covers",
    "1. Build Album Picker",
    "1. Pla to M3u Playlists",
    "1. M3u to Pla Playlists",
    "1.Write ID3",
    "1.Update Database from ID3",
    "1. Update Files for Remote Reference",
    "1. Add files to Library",
};

/// The first indicator that belongs to no phase of a reconciliation.
constexpr std::size_t FirstOtherPhase = 10;

}  // namespace quillon
