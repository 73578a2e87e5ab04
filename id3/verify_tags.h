#pragma once

#include <vector>

#include "id3/duplicate_files.h"
#include "platform/date_time.h"
#include "platform/files.h"

namespace quillon {

class Run;

/// Compares the tag of every sound file in the library with the names of its file and folders and
/// with the database, and notes each disagreement as a row of the difference table.
///
/// On the way files are renamed: square brackets in names become round ones, and a file whose tag
/// has another title takes that title for its name. Where another file has the new name and keeps
/// it, the file is a duplicate. Rows of renamed files follow them. Duplicates are removed at the
/// end, all or none (run/removals.h). Failures are logged with "VerifyID3Tags:".
void VerifyID3Tags(Run& run);

/// The same below one folder of the library, in the tree layout. `updateTime` goes into the rows,
/// and what albums leave to the end into `rests`. Failures are logged with "VerifyID3TagsFolder".
void VerifyID3TagsFolder(Run& run, const FolderEntry& root, DateTime updateTime,
                         std::vector<AlbumRest>& rests);

}  // namespace quillon
