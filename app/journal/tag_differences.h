#pragma once

#include <string>
#include <vector>

#include "changes/change.h"

namespace quillon {

/// What becomes of each value of a file's tag.
struct TagDifferences {
    struct Difference {
        std::string field;  ///< "Song", "Genre number"
        std::string before, after;
        bool isNumber = false;
    };
    bool hadTag = true;
    std::vector<Difference> fields;
};

/// Of a change that writes a file's end.
TagDifferences TagDifferencesOf(const FileChange& change);

}  // namespace quillon
