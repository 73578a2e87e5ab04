#pragma once

#include <memory>
#include <string>

#include "platform/database.h"
#include "playlists/generated_lists.h"

namespace quillon {

class Run;

/// The rows of generated playlists in the table `Playlists`, by which a later run finds them.
class PlaylistRows {
  public:
    explicit PlaylistRows(Run& run) : run_(run) {}

    /// Sees to it that the file of this name (without extension) has a row with the family's mark.
    /// One that has it already is not written. Throws Failure.
    void Record(const std::string& name, GeneratedBy family);

  private:
    void Write(RecordSet& rows, const std::string& name, GeneratedBy family) const;

    Run& run_;
    std::unique_ptr<RecordSet> rows_;  ///< null before the first row, and after a failure
};

}  // namespace quillon
