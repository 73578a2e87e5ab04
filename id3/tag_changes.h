#pragma once

#include <cstddef>

namespace quillon {

class Run;

/// What a comparison of tags would do to the library's files.
struct TagChanges {
    std::size_t renames = 0;
    std::size_t removals = 0;  ///< duplicates; those that the run's limits would keep included
};

/// Looks at every tag as VerifyID3Tags does and changes nothing. The database is not asked. What
/// fails is logged.
TagChanges CountTagChanges(Run& run);

}  // namespace quillon
