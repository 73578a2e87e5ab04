#include "driver/procedures.h"

#include "database/marks.h"
#include "database/remove_duplicates.h"
#include "id3/populate_genre.h"
#include "id3/reconcile_table.h"
#include "id3/verify_tags.h"
#include "reconcile/refresh_database.h"

namespace quillon {

Procedures AvailableProcedures() {
    Procedures procedures;
    procedures.MarkSnapshotExists = MarkSnapshotExists;
    procedures.RestoreMarks = RestoreMarks;
    procedures.PopulateGenre = PopulateGenre;
    procedures.RemoveDuplicates = RemoveDuplicates;
    procedures.VerifyID3Tags = VerifyID3Tags;
    procedures.RefreshDatabase = RefreshDatabase;
    procedures.OutputReconcileTable = OutputReconcileTable;
    return procedures;
}

}  // namespace quillon
