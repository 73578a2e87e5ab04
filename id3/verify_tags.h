#pragma once

#include <cstddef>
#include <vector>

#include "id3/difference_table.h"
#include "id3/duplicate_files.h"
#include "platform/files.h"

namespace quillon {

class Run;

/// Compares the tag of every sound file in the library with the names of its file and folders and
/// with the database, and puts a row for each disagreement in the place of those that the
/// difference table has.
///
/// On the way files are renamed: square brackets in names become round ones, and a file whose tag
/// has another title takes that title for its name. Where another file has the new name and keeps
/// it, the file is a duplicate. Rows of renamed files follow them. Duplicates are removed at the
/// end, all or none (run/removals.h). Failures are logged with "VerifyID3Tags:".
void VerifyID3Tags(Run& run);

/// The same below one folder of the library, in the tree layout. Rows go into `differences`, and
/// what albums leave to the end into `rests`. Failures are logged with "VerifyID3TagsFolder".
void VerifyID3TagsFolder(Run& run, const FolderEntry& root, DifferenceRows& differences,
                         std::vector<AlbumRest>& rests);

/// What a comparison of tags would do to the library's files.
struct TagChanges {
    std::size_t renames = 0;
    std::size_t removals = 0;  ///< duplicates; those that the run's limits would keep included
};

/// Looks at every tag as VerifyID3Tags does and changes nothing. The database is not asked. What
/// fails is logged.
TagChanges CountTagChanges(Run& run);

}  // namespace quillon
