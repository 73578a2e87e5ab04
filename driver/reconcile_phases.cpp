#include "driver/reconcile_phases.h"

#include <array>

namespace quillon {
namespace {

bool HasLibrary(const ReconcileScope& scope) {
    return scope.libraryPresent;
}
bool LibraryOrPlaylists(const ReconcileScope& scope) {
    return scope.libraryPresent || scope.playlistsOnly;
}

constexpr std::array PhaseTable{
    ReconcilePhase{.what = "Capture playlists",
                   .applies = LibraryOrPlaylists,
                   .indicator = 0,
                   .work = &Procedures::CapturePlaylists},
    ReconcilePhase{.what = "Remove duplicates",
                   .applies = HasLibrary,
                   .indicator = 1,
                   .work = &Procedures::RemoveDuplicates},
    ReconcilePhase{.what = "Verify ID3",
                   .applies = [](const ReconcileScope& s) { return s.ComparesTags(); },
                   .indicator = 2,
                   .work = &Procedures::VerifyID3Tags},
    ReconcilePhase{.what = "Add folder tracks to library",
                   .applies = HasLibrary,
                   .indicator = 3,
                   .work = &Procedures::RefreshDatabase},
    ReconcilePhase{.what = "Add library tracks to download table",
                   .applies = HasLibrary,
                   .indicator = 4,
                   .work = &Procedures::PopulateSpinnerTracks},
    // The indicator lights up and nothing runs: the correlation was switched off long ago, and
    // switching it on again would change download tables that people rely on.
    ReconcilePhase{
        .what = "Correlate download table with library", .applies = HasLibrary, .indicator = 5},
    ReconcilePhase{.what = "Add artist to download table",
                   .applies = HasLibrary,
                   .indicator = 6,
                   .work = &Procedures::PopulateSpinnerArtist},
    ReconcilePhase{.what = "Update playlist references",
                   .applies = LibraryOrPlaylists,
                   .indicator = 7,
                   .work = &Procedures::RefreshPlaylist},
    ReconcilePhase{.what = "Create new playlists",
                   .applies = LibraryOrPlaylists,
                   .indicator = 8,
                   .preparation = &Procedures::BuildORsRecordset,
                   .work = &Procedures::CreateNewPlaylists},
    ReconcilePhase{.what = "Verify album covers",
                   .applies = HasLibrary,
                   .indicator = 9,
                   .work = &Procedures::RefreshAlbumCovers},
    ReconcilePhase{
        .what = "Output reconciliation file",
        .applies = [](const ReconcileScope& s) { return s.reconcileOption && !s.playlistsOnly; },
        .indicator = std::nullopt,
        .item = "1. Output Reconcilliation File",
        .work = &Procedures::OutputReconcileTable},
};

}  // namespace

std::span<const ReconcilePhase> ReconcilePhases() {
    return PhaseTable;
}

}  // namespace quillon
