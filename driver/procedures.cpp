#include "driver/procedures.h"

#include "database/marks.h"
#include "database/remove_duplicates.h"
#include "playlists/capture.h"
#include "playlists/convert.h"
#include "playlists/create.h"
#include "playlists/refresh.h"
#include "playlists/working_set.h"
#include "reconcile/refresh_database.h"

namespace quillon {

Procedures AvailableProcedures() {
    Procedures procedures;
    procedures.MarkSnapshotExists = MarkSnapshotExists;
    procedures.RestoreMarks = RestoreMarks;
    procedures.BuildORsRecordset = BuildORsRecordset;
    procedures.CapturePlaylists = CapturePlaylists;
    procedures.RemoveDuplicates = RemoveDuplicates;
    procedures.RefreshDatabase = RefreshDatabase;
    procedures.RefreshPlaylist = RefreshPlaylist;
    procedures.CreateNewPlaylists = CreateNewPlaylists;
    procedures.ConvertPlaToM3u = aPlaToM3u_Click;
    procedures.ConvertM3uToPla = M3uToPla;
    return procedures;
}

}  // namespace quillon
