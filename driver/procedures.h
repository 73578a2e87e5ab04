#pragma once

#include <functional>

namespace quillon {

class Run;

/// The work that the driver starts, by name; none is empty. This is the one place where the driver
/// meets the modes and phases.
struct Procedures {
    using Work = std::function<void(Run&)>;

    // Start-up, beside the driver's own.
    Work BuildORsRecordset;
    Work PopulateGenre;

    // The reconcile phases.
    Work CapturePlaylists;
    Work RemoveDuplicates;
    Work VerifyID3Tags;
    Work RefreshDatabase;
    Work PopulateSpinnerTracks;
    Work PopulateSpinnerArtist;
    Work RefreshPlaylist;
    Work CreateNewPlaylists;
    Work RefreshAlbumCovers;
    Work OutputReconcileTable;

    // The other modes.
    Work UpdateDatabaseFromID3;
    Work AddFilesToLibrary;
    Work WriteID3;
    Work BuildAlbumPicker;
    Work ConvertPlaToM3u;
    Work MakeRemote;
    Work ConvertM3uToPla;
};

/// A piece of work named by its place in the table, as the mode and phase tables refer to it.
using ProcedureName = Procedures::Work Procedures::*;

/// The program's own.
Procedures AvailableProcedures();

}  // namespace quillon
