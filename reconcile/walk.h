#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "database/cdjid.h"
#include "database/mark_snapshot.h"
#include "database/marks.h"
#include "platform/database.h"
#include "run/run.h"

namespace quillon {

/// What one refresh carries from folder to folder.
struct Walk {
    explicit Walk(Run& theRun) : run(theRun), sequence(theRun) {}

    Run& run;
    CdjidSequence sequence;
    std::unique_ptr<RecordSet> albums, tracks;  ///< table cursors
    MarkSnapshot before;                        ///< counts and numbers before they were marked
    std::vector<UnlistedFolder> unlisted;       ///< what could not be visited
    bool musicSeen = false;  ///< the root in hand holds music, or artists that are left out
};

/// An album that is being processed.
struct Album {
    std::string artist;
    std::string title;
    std::int16_t trackCount = 0;
    std::string cdjid;  ///< NoCdjid while there is no row for it
};

}  // namespace quillon
