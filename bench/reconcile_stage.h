#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

#include "bench/child_process.h"
#include "bench/music_library.h"
#include "tests/outside/temporary_folder.h"

namespace quillon::bench {

/// The program beside a library and a host folder of its own, set to reconcile.
class ReconcileStage {
  public:
    /// Files named by artist are for runs that compare the tags, too.
    ReconcileStage(std::string program, std::size_t tracks, FileNames names);

    std::filesystem::path Music() const { return folder_.Path() / "disk" / "Music"; }

    /// One run, shown by this face. Throws when it does not end with 0.
    Usage Reconcile(const std::string& view = "plain", const Surroundings& surroundings = {}) const;

  private:
    std::filesystem::path Data() const { return folder_.Path() / "disk" / "Data"; }

    std::string program_;
    outside::TemporaryFolder folder_;
};

}  // namespace quillon::bench
