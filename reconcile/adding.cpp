#include "reconcile/adding.h"

#include "database/spinner_rows.h"
#include "run/host_settings.h"
#include "run/paths.h"

namespace quillon {

Adding::Adding(Run& theRun)
    : run(theRun),
      albums(theRun.connection->OpenTable("Albums")),
      sequence(theRun),
      root(AddBackslash(FolderPath(theRun.settings.LibraryRoot))),
      downloadHost(DownloadHost(theRun.host)),
      compilations(theRun) {
    // A table that is not there is told of once, and not for each file. Its rows are not read for
    // that: those of new songs go into tables that nobody looks at.
    for (const std::string table : {"SpinnerArtist", "Spinner", "Tracks"})
        static_cast<void>(run.connection->Query("SELECT ID FROM " + table + " WHERE ID=0"));
}

}  // namespace quillon
