#include "driver/procedures.h"

#include "database/marks.h"
#include "database/remove_duplicates.h"
#include "reconcile/add_files_to_library.h"
#include "reconcile/refresh_database.h"

namespace quillon {

Procedures AvailableProcedures() {
    Procedures procedures;
    procedures.MarkSnapshotExists = MarkSnapshotExists;
    procedures.RestoreMarks = RestoreMarks;
    procedures.RemoveDuplicates = RemoveDuplicates;
    procedures.RefreshDatabase = RefreshDatabase;
    procedures.AddFilesToLibrary = AddFilesToLibrary;
    return procedures;
}

}  // namespace quillon
