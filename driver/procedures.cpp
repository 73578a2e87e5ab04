#include "driver/procedures.h"

#include "covers/album_picker.h"
#include "database/marks.h"
#include "database/remove_duplicates.h"
#include "reconcile/refresh_database.h"

namespace quillon {

Procedures AvailableProcedures() {
    Procedures procedures;
    procedures.MarkSnapshotExists = MarkSnapshotExists;
    procedures.RestoreMarks = RestoreMarks;
    procedures.RemoveDuplicates = RemoveDuplicates;
    procedures.RefreshDatabase = RefreshDatabase;
    procedures.BuildAlbumPicker = BuildAlbumPicker;
    return procedures;
}

}  // namespace quillon
