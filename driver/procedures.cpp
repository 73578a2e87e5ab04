#include "driver/procedures.h"

#include "database/marks.h"
#include "database/remove_duplicates.h"
#include "id3/id3_to_db.h"
#include "id3/write_id3.h"
#include "reconcile/refresh_database.h"

namespace quillon {

Procedures AvailableProcedures() {
    Procedures procedures;
    procedures.MarkSnapshotExists = MarkSnapshotExists;
    procedures.RestoreMarks = RestoreMarks;
    procedures.RemoveDuplicates = RemoveDuplicates;
    procedures.RefreshDatabase = RefreshDatabase;
    procedures.UpdateDatabaseFromID3 = UpdateDatabaseFromID3;
    procedures.WriteID3 = WriteID3;
    return procedures;
}

}  // namespace quillon
